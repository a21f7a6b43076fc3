#include "preview/MediaDiscoverer.h"

#include <gst/gst.h>
#include <gst/pbutils/pbutils.h>

#include <mutex>

namespace preview {

namespace {

void EnsureGst() {
  static std::once_flag once;
  std::call_once(once, [] {
    gst_init(nullptr, nullptr);
    gst_pb_utils_init();
  });
}

QString CodecName(GstCaps* caps) {
  if (!caps) return QString();
  const GstStructure* s = gst_caps_get_structure(caps, 0);
  if (s && g_str_equal(gst_structure_get_name(s), "audio/x-raw")) return QStringLiteral("pcm");
  gchar* text = gst_pb_utils_get_codec_description(caps);
  const QString name = QString::fromUtf8(text ? text : "").toLower();
  g_free(text);
  return name;
}

void AddTracks(const GstToc* toc, QVector<double>* lengths) {
  if (!toc || !lengths) return;
  for (GList* e = gst_toc_get_entries(toc); e; e = e->next) {
    auto* entry = static_cast<GstTocEntry*>(e->data);
    gint64 start = 0, stop = 0;
    if (gst_toc_entry_get_start_stop_times(entry, &start, &stop)) lengths->append(double(stop - start) / 1e6);
  }
}

}  // namespace

MediaFacts DiscoverMedia(const QString& uri, int timeoutMs, QVector<double>* trackLengthsMs) {
  EnsureGst();
  MediaFacts f;
  GError* error = nullptr;
  GstDiscoverer* discoverer = gst_discoverer_new(GstClockTime(timeoutMs) * GST_MSECOND, &error);
  if (!discoverer) {
    g_clear_error(&error);
    return f;
  }
  GstDiscovererInfo* info = gst_discoverer_discover_uri(discoverer, uri.toUtf8().constData(), &error);
  g_clear_error(&error);
  if (info) {
    const GstDiscovererResult result = gst_discoverer_info_get_result(info);
    if (result == GST_DISCOVERER_OK || result == GST_DISCOVERER_MISSING_PLUGINS) {
      const GstClockTime duration = gst_discoverer_info_get_duration(info);
      f.lengthMs = GST_CLOCK_TIME_IS_VALID(duration) ? double(duration / GST_MSECOND) : -1;
      GList* audio = gst_discoverer_info_get_audio_streams(info);
      if (audio) {
        auto* a = static_cast<GstDiscovererAudioInfo*>(audio->data);
        f.samplesPerSec = int(gst_discoverer_audio_info_get_sample_rate(a));
        f.channels = int(gst_discoverer_audio_info_get_channels(a));
        GstCaps* caps = gst_discoverer_stream_info_get_caps(GST_DISCOVERER_STREAM_INFO(a));
        f.formatTag = CodecName(caps);
        if (f.formatTag == u"pcm") f.bitsPerSample = int(gst_discoverer_audio_info_get_depth(a));
        if (caps) gst_caps_unref(caps);
      }
      gst_discoverer_stream_info_list_free(audio);
      GList* video = gst_discoverer_info_get_video_streams(info);
      if (video) {
        auto* v = static_cast<GstDiscovererVideoInfo*>(video->data);
        if (!gst_discoverer_video_info_is_image(v)) {
          f.hasVideo = true;
          f.width = int(gst_discoverer_video_info_get_width(v));
          f.height = int(gst_discoverer_video_info_get_height(v));
          f.bitsPerPel = int(gst_discoverer_video_info_get_depth(v));
          const guint num = gst_discoverer_video_info_get_framerate_num(v);
          const guint den = gst_discoverer_video_info_get_framerate_denom(v);
          f.frameRate = den ? double(num) / den : 0;
        }
      }
      gst_discoverer_stream_info_list_free(video);
      AddTracks(gst_discoverer_info_get_toc(info), trackLengthsMs);
      f.valid = f.lengthMs > 0 || f.hasVideo || f.samplesPerSec > 0;
    }
    gst_discoverer_info_unref(info);
  }
  g_object_unref(discoverer);
  return f;
}

}  // namespace preview
