#include "preview/mpv_version.h"

#include <mpv/client.h>

#include <clocale>

namespace tavrelune {

QString libmpvVersion()
{
    // mpv refuses to start under a locale with another decimal separator.
    std::setlocale(LC_NUMERIC, "C");
    QString version;
    // mpv tells its version only once initialized: a core that reads no
    // configuration and opens no output is enough.
    if (mpv_handle* mpv = mpv_create()) {
        for (const char* option : {"config", "video", "audio", "terminal", "input-default-bindings"})
            mpv_set_option_string(mpv, option, "no");
        mpv_set_option_string(mpv, "idle", "yes");
        if (mpv_initialize(mpv) >= 0) {
            if (char* text = mpv_get_property_string(mpv, "mpv-version")) {
                version = QString::fromUtf8(text);
                mpv_free(text);
            }
        }
        mpv_terminate_destroy(mpv);
    }
    if (version.startsWith(QLatin1String("mpv ")))
        return version.mid(4);
    if (!version.isEmpty())
        return version;
    const unsigned long api = mpv_client_api_version();
    return QStringLiteral("client API %1.%2").arg(api >> 16).arg(api & 0xffff);
}

}  // namespace tavrelune
