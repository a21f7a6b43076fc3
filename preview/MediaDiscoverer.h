#pragma once
#include <QString>
#include <QVector>

#include "preview/MediaFacts.h"

namespace preview {

// Asks GStreamer's discoverer what a stream holds: length, the first audio
// stream's codec, rate, depth and channels, the first video stream's size,
// depth and frame rate. Blocks up to `timeoutMs`. Invalid when nothing
// could be read. `trackStartsMs` (may be null) gets a disc's track starts.
MediaFacts DiscoverMedia(const QString& uri, int timeoutMs, QVector<double>* trackLengthsMs = nullptr);

}  // namespace preview
