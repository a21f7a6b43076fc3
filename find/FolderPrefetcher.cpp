#include "find/FolderPrefetcher.h"

#include <sched.h>

#include <algorithm>

#include "core/JobFlags.h"

namespace find {

namespace {
bool IsDotName(const QString& name) {
  return name.size() <= 2 && (name.isEmpty() || name == u"." || name == u"..");
}

// Descriptors held by folders read ahead, whatever the number of readers:
// well below the usual limit of 1024.
constexpr size_t kMostAhead = 256;
constexpr int kMostReaders = 16;

// Heap order: the folder the walk comes to first on top. Pre-order is the
// order of the paths of places (a folder before its contents).
template <class NodePtr>
bool LaterInWalk(const NodePtr& a, const NodePtr& b) {
  return std::lexicographical_compare(b->order.begin(), b->order.end(), a->order.begin(), a->order.end());
}
}  // namespace

FolderPrefetcher::FolderPrefetcher(const QString& location, bool excludeOn, const QStringList& excludes, int readers,
                                   const std::vector<platform::WildcardPattern>* screen)
    : excludeOn_(excludeOn), excludes_(excludes) {
  if (screen) {
    screen_ = *screen;
    screening_ = !screen_.empty();
  }
  readers = std::clamp(readers, 1, kMostReaders);
  ahead_ = std::min(kMostAhead, kAheadPerReader * size_t(readers));
  root_ = std::make_shared<Node>();
  root_->path = location;
  todo_.push_back(root_);
  for (int i = 0; i < readers; ++i) threads_.emplace_back(&FolderPrefetcher::work, this);
}

FolderPrefetcher::~FolderPrefetcher() {
  {
    std::lock_guard lock(mutex_);
    stop_ = true;
  }
  work_.notify_all();
  for (std::thread& t : threads_) t.join();
}

bool FolderPrefetcher::excluded(const QString& path) const {
  if (!excludeOn_) return false;
  for (const QString& e : excludes_)
    if (path.contains(e, Qt::CaseInsensitive)) return true;
  return false;
}

void FolderPrefetcher::read(Node& node) {
  // Names that match no pattern and cannot be folders stay unconverted: the
  // walk skips them unread.
  const std::vector<platform::WildcardPattern>* keep = screening_ ? &screen_ : nullptr;
  auto reader = node.parent ? std::make_shared<platform::FolderReader>(*node.parent, node.index, keep)
                            : std::make_shared<platform::FolderReader>(node.path, keep);
  const platform::FolderReader& r = *reader;
  if (r.isOpen()) {
    if (screening_) {
      std::vector<bool> wanted(size_t(r.count()), false);
      for (qsizetype i = 0; i < r.count(); ++i) {
        if (IsDotName(r.name(i))) continue;
        for (const platform::WildcardPattern& p : screen_) {
          if (p.matchesEverything() || p.matches(r.name(i)) || (!r.alias(i).isEmpty() && p.matches(r.alias(i)))) {
            wanted[size_t(i)] = true;
            break;
          }
        }
      }
      reader->statAhead(wanted);
    }
    for (qsizetype i = 0; i < r.count(); ++i) {
      if (IsDotName(r.name(i)) || !r.isWalkableFolder(i)) continue;
      QString sub = node.path + r.name(i) + u'/';
      if (excluded(sub)) continue;
      auto child = std::make_shared<Node>();
      child->order.reserve(node.order.size() + 1);
      child->order = node.order;
      child->order.push_back(quint32(node.children.size()));
      child->path = std::move(sub);
      child->parent = reader;
      child->index = i;
      node.children.push_back(std::move(child));
    }
  }
  node.reader = std::move(reader);
  node.parent.reset();
}

void FolderPrefetcher::publish(const std::shared_ptr<Node>& node) {
  // Helpers always take the folder the walk needs first, so that the walk
  // seldom finds its next folder unread.
  for (const std::shared_ptr<Node>& child : node->children) {
    todo_.push_back(child);
    std::push_heap(todo_.begin(), todo_.end(), LaterInWalk<std::shared_ptr<Node>>);
  }
  node->state = Node::kReady;
  if (idle_ > 0 && !node->children.empty() && !throttled_) work_.notify_all();
}

void FolderPrefetcher::work() {
  for (;;) {
    std::shared_ptr<Node> node;
    {
      std::unique_lock lock(mutex_);
      for (;;) {
        // After Escape nothing more is read ahead; the walk stops on its own.
        if (stop_ || core::JobFlags::AbortRequested()) return;
        while (!todo_.empty() && todo_.front()->state != Node::kPending) {  // the walk took it
          std::pop_heap(todo_.begin(), todo_.end(), LaterInWalk<std::shared_ptr<Node>>);
          todo_.pop_back();
        }
        // A full window sleeps until the walk has taken half of it: a
        // wake-up costs far more than a folder.
        if (inFlight_ >= ahead_) throttled_ = true;
        if (!todo_.empty() && !throttled_) break;
        ++idle_;
        work_.wait(lock);
        --idle_;
      }
      std::pop_heap(todo_.begin(), todo_.end(), LaterInWalk<std::shared_ptr<Node>>);
      node = std::move(todo_.back());
      todo_.pop_back();
      node->state = Node::kReading;
      node->counted = true;
      ++inFlight_;
    }
    read(*node);
    bool wake = false;
    {
      std::lock_guard lock(mutex_);
      publish(node);
      wake = waitingFor_ == node;
    }
    if (wake) ready_.notify_one();
  }
}

FolderPrefetcher::Reader FolderPrefetcher::take(const QString& path) {
  std::unique_lock lock(mutex_);
  if (off_) return nullptr;
  std::shared_ptr<Node> next;
  if (!started_) {
    started_ = true;
    next = root_;
  }
  while (!next && !frames_.empty()) {
    Frame& f = frames_.back();
    if (f.next < f.node->children.size()) next = f.node->children[f.next++];
    else frames_.pop_back();
  }
  if (!next || next->path != path) {
    // Out of step with the walk: stop reading ahead.
    off_ = stop_ = true;
    todo_.clear();
    frames_.clear();
    lock.unlock();
    work_.notify_all();
    return nullptr;
  }
  if (next->state == Node::kPending) {
    // No helper got to it yet: read it here rather than wait.
    next->state = Node::kReading;
    lock.unlock();
    read(*next);
    lock.lock();
    publish(next);
  } else if (next->state == Node::kReading) {
    // Often only microseconds away: let the helper finish before sleeping.
    for (int i = 0; i < 16 && next->state != Node::kReady; ++i) {
      lock.unlock();
      sched_yield();
      lock.lock();
    }
    if (next->state != Node::kReady) {
      waitingFor_ = next;
      ready_.wait(lock, [&] { return next->state == Node::kReady; });
      waitingFor_.reset();
    }
  }
  if (next->counted) {
    next->counted = false;
    if (--inFlight_ <= ahead_ / 2 && throttled_) {
      throttled_ = false;
      if (idle_ > 0) work_.notify_all();
    }
  }
  Reader reader = std::move(next->reader);
  frames_.push_back({std::move(next), 0});
  return reader;
}

}  // namespace find
