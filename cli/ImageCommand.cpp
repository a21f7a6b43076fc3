// quorvane image: the facts block, the note and the size line of pictures as
// the "Preview" tab shows them, or the status text where one applies.
#include <QRegularExpression>
#include <algorithm>

#include "cli/ArgParser.h"
#include "cli/CliContext.h"
#include "core/CProfile.h"
#include "core/RowEscape.h"
#include "core/Settings.h"
#include "core/SettingsLocation.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"
#include "preview/PictureLoader.h"
#include "preview/modImgInfo.h"

namespace cli {

namespace {

// The display's colour depth behind "video bytes": a headless run assumes true colour.
constexpr int kScreenBits = 24;

void Line(QTextStream& out, const QString& text) {
  QString line;
  core::AppendRowField(&line, text);
  out << line << '\n';
}

// A folder stands for its previewed files, in name order.
QStringList Expand(const QString& arg) {
  platform::DirEntry entry;
  if (!platform::StatPath(arg, &entry) || !entry.isDirectory()) return {arg};
  platform::FolderReader folder(arg);
  QStringList files;
  for (qsizetype i = 0; i < folder.count(); ++i) {
    const QString& name = folder.name(i);
    if (modImgInfo::KindOf(modImgInfo::ExtensionOf(name)) != modImgInfo::Kind::kNone && folder.isRegularFile(i))
      files.append(platform::WithSeparator(arg) + name);
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

int RunImageCommand(CliContext& ctx) {
  ArgParser args;
  args.option(QStringLiteral("fit")).flag(QStringLiteral("zoom")).flag(QStringLiteral("decode"));
  if (!args.parse(ctx.args) || args.positional().isEmpty()) {
    ctx.err << "quorvane image: " << (args.error().isEmpty() ? QStringLiteral("give one or more files") : args.error())
            << '\n';
    return kExitUsage;
  }
  QSize area;
  if (args.isSet(QStringLiteral("fit"))) {
    static const QRegularExpression size(QStringLiteral("^([1-9][0-9]{0,4})x([1-9][0-9]{0,4})$"));
    const QRegularExpressionMatch m = size.match(args.value(QStringLiteral("fit")));
    if (!m.hasMatch()) {
      ctx.err << "quorvane image: --fit needs WIDTHxHEIGHT in pixels, as 400x300\n";
      return kExitUsage;
    }
    area = QSize(m.captured(1).toInt(), m.captured(2).toInt());
  }
  const bool zoom = args.isSet(QStringLiteral("zoom"));
  const bool decode = args.isSet(QStringLiteral("decode"));

  // The excluded extensions come from the settings file.
  core::AppSettings settings = core::DefaultSettings(core::DefaultsContext::ForScreen(1024, 768));
  core::CProfile profile;
  const QString iniPath = core::SettingsFilePath(ctx.iniFile);
  profile.setProfileFile(iniPath);
  core::LoadSettingsAtStart(profile, iniPath, settings);
  const QString& noPrevI = settings.settings.noPrevI;

  int status = kExitOk;
  for (const QString& arg : args.positional()) {
    for (const QString& path : Expand(arg)) {
      platform::DirEntry entry;
      if (!platform::StatPath(path, &entry) || entry.isDirectory()) {
        ctx.err << "quorvane image: cannot open " << core::RowField(path) << '\n';
        status = kExitFailed;
        continue;
      }
      Line(ctx.out, path);
      const int code = modImgInfo::StatusFor(modImgInfo::ExtensionOf(path), noPrevI);
      if (code != modImgInfo::kStatusLoading) {
        Line(ctx.out, modImgInfo::StatusText(code));
        continue;
      }
      modImgInfo::ImageHeader header;
      preview::ReadPictureFacts(path, header);
      for (const QString& fact : modImgInfo::FactsLines(header, double(entry.size), kScreenBits)) Line(ctx.out, fact);
      if (!header.note.isEmpty()) Line(ctx.out, header.note);

      QSize size;
      modImgInfo::Fit fit;
      if (decode) {
        const preview::LoadedPicture picture = preview::LoadPicture(path, area, zoom);
        if (picture.ok) {
          size = picture.size;
          fit = picture.fit;
        }
      } else {
        const preview::PictureProbe probe = preview::ProbePicture(path);
        if (probe.ok && probe.size.isValid()) {
          size = probe.size;
          fit = modImgInfo::FitPreviewSize(size, area, zoom);
        }
      }
      if (!size.isValid()) {
        Line(ctx.out, modImgInfo::StatusText(modImgInfo::kStatusCannotDecode));
        status = kExitFailed;
        continue;
      }
      Line(ctx.out, modImgInfo::FormatPreviewSize(size.width(), size.height(), fit.scaled, fit.shown.width(),
                                                  fit.shown.height()));
    }
  }
  ctx.out.flush();
  return status;
}

}  // namespace cli
