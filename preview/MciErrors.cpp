#include "preview/MciErrors.h"

namespace preview {

QString MciErrorText(int code) {
  switch (code) {
    case kMciOk: return QStringLiteral("The specified command was carried out.");
    case kMciUnrecognizedKeyword: return QStringLiteral("The driver cannot recognize the specified command parameter.");
    case kMciUnrecognizedCommand: return QStringLiteral("The driver cannot recognize the specified command.");
    case kMciInvalidDeviceName:
      return QStringLiteral("The specified device is not open or is not recognized by the media layer.");
    case kMciCannotLoadDriver:
      return QStringLiteral("The specified device type is not installed. Check the device table.");
    case kMciMissingCommandString: return QStringLiteral("No command was specified.");
    case kMciParamOverflow: return QStringLiteral("The reply does not fit in the buffer given.");
    case kMciBadInteger: return QStringLiteral("A number in the command is not valid.");
    case kMciMissingParameter: return QStringLiteral("The specified command requires a parameter that was not given.");
    case kMciUnsupportedFunction: return QStringLiteral("The device does not support the specified command.");
    case kMciFileNotFound: return QStringLiteral("The specified file cannot be found. Check the path and file name.");
    case kMciDeviceNotReady: return QStringLiteral("The device is not ready: there is no disc in the drive.");
    case kMciOutOfRange: return QStringLiteral("The specified position is outside the media.");
    case kMciDuplicateAlias: return QStringLiteral("The specified alias is already in use. Use another alias.");
    case kMciInvalidFile:
      return QStringLiteral(
          "The specified file cannot be played on the specified device. The file may be damaged or in a format the "
          "device does not read.");
    case kMciNoWindow: return QStringLiteral("There is no window to show the video in.");
    case kMciMissingDeviceName: return QStringLiteral("No device name or alias was given.");
    default: return QStringLiteral("Unknown error number %1.").arg(code);
  }
}

}  // namespace preview
