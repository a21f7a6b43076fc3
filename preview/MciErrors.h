#pragma once
#include <QString>

namespace preview {

// The device layer's error numbers and their texts.
enum MciError : int {
  kMciOk = 0,
  kMciUnrecognizedKeyword = 259,
  kMciUnrecognizedCommand = 261,
  kMciInvalidDeviceName = 263,
  kMciCannotLoadDriver = 266,
  kMciMissingCommandString = 267,
  kMciParamOverflow = 268,
  kMciBadInteger = 270,
  kMciMissingParameter = 273,
  kMciUnsupportedFunction = 274,
  kMciFileNotFound = 275,
  kMciDeviceNotReady = 276,
  kMciOutOfRange = 282,
  kMciDuplicateAlias = 289,
  kMciInvalidFile = 296,
  kMciNoWindow = 346,
  kMciMissingDeviceName = 311,
};

QString MciErrorText(int code);

}  // namespace preview
