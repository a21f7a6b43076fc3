#pragma once
#include <QString>

namespace preview {

// The command-string media interface: one command string in, 0 or an error
// number out, with a text reply for queries. The device layer implements it
// over the platform's media framework; tests implement it to record commands.
class MciInterface {
 public:
  virtual ~MciInterface() = default;
  // 0 on success, else an error number; `reply` (may be null) gets the answer.
  virtual int SendString(const QString& command, QString* reply) = 0;
  // The text for an error number.
  virtual QString ErrorString(int code) const = 0;
  // Above 0 while `alias` names an open device.
  virtual int DeviceId(const QString& alias) const = 0;
};

}  // namespace preview
