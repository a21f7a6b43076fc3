#pragma once
#include <atomic>

namespace core {

// The process-wide job flags. Escape, "Sto&p (Esc)" and a close request set
// the abort flag; every long job clears it when it starts and polls it between
// items. The busy flag is set while the list is being filled (browse, find,
// drives) so that new fills wait for the browse timer. Atomics, so that a
// helper thread or a benchmark timer may set the abort flag safely.
class JobFlags {
 public:
  static void RequestAbort() { abort_.store(true, std::memory_order_relaxed); }
  static void ClearAbort() { abort_.store(false, std::memory_order_relaxed); }
  static bool AbortRequested() { return abort_.load(std::memory_order_relaxed); }
  // For engines that take the flag by reference.
  static const std::atomic<bool>& AbortFlag() { return abort_; }

  // For fills that clear the flag themselves when they start.
  static std::atomic<bool>* AbortPointer() { return &abort_; }

  static void SetBusy(bool busy) { busy_.store(busy, std::memory_order_relaxed); }
  static bool Busy() { return busy_.load(std::memory_order_relaxed); }

  // The second cancel flag: Escape and a close request raise it together with
  // the abort flag (RequestStop); jobs that run their own loops poll it.
  static void RequestCancel() { cancel_.store(true, std::memory_order_relaxed); }
  static void ClearCancel() { cancel_.store(false, std::memory_order_relaxed); }
  static bool CancelRequested() { return cancel_.load(std::memory_order_relaxed); }
  static void RequestStop() {
    RequestAbort();
    RequestCancel();
  }

  // How the last job was stopped: 0 not stopped, 1 by the user (Escape),
  // 2 because the main window wants to close.
  enum State : int { kNotStopped = 0, kStoppedByUser = 1, kStoppedForClose = 2 };
  static void SetJobState(int state) { state_.store(state, std::memory_order_relaxed); }
  static int JobState() { return state_.load(std::memory_order_relaxed); }

 private:
  static inline std::atomic<bool> abort_{false};
  static inline std::atomic<bool> busy_{false};
  static inline std::atomic<bool> cancel_{false};
  static inline std::atomic<int> state_{kNotStopped};
};

}  // namespace core
