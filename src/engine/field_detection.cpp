#include "engine/field_detection.h"

#include <algorithm>

namespace tavrelune::FieldDetection {

QStringList arguments(const QString& path)
{
    return {QStringLiteral("-nostdin"), QStringLiteral("-hide_banner"), QStringLiteral("-v"),
            QStringLiteral("error"), QStringLiteral("-i"), path, QStringLiteral("-map"), QStringLiteral("0:v:0"),
            QStringLiteral("-vf"),
            QStringLiteral("idet,metadata=mode=print:key=lavfi.idet.multiple.current_frame:file=-"),
            QStringLiteral("-frames:v"), QString::number(framesJudged), QStringLiteral("-f"),
            QStringLiteral("null"), QStringLiteral("-")};
}

bool looksInterlaced(const QString& verdicts)
{
    const QLatin1String key("lavfi.idet.multiple.current_frame=");
    int topFirst = 0;
    int bottomFirst = 0;
    int judged = 0;
    for (const QStringView line : QStringView(verdicts).split(QLatin1Char('\n'))) {
        const QStringView trimmed = line.trimmed();
        if (!trimmed.startsWith(key))
            continue;
        const QStringView verdict = trimmed.mid(key.size());
        topFirst += verdict == QLatin1String("tff");
        bottomFirst += verdict == QLatin1String("bff");
        judged += verdict != QLatin1String("undetermined");
    }
    // Fields show one order in nearly every frame; sharp synthetic
    // patterns fool the filter into a mix of both and progressive.
    constexpr int enough = 20;
    return judged >= enough && std::max(topFirst, bottomFirst) * 10 >= judged * 9;
}

}  // namespace tavrelune::FieldDetection
