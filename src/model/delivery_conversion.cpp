#include "model/delivery_conversion.h"

namespace tavrelune {

DeliveryConversion deliveryConversionFor(const ColorTags& tags)
{
    if (tags.transfer == QLatin1String("smpte2084"))
        return DeliveryConversion::pq;
    if (tags.transfer == QLatin1String("arib-std-b67"))
        return DeliveryConversion::hlg;
    if (tags.primaries == QLatin1String("bt2020"))
        return DeliveryConversion::wideGamut;
    return DeliveryConversion::none;
}

QString deliveryConversionLabel(DeliveryConversion conversion)
{
    const QChar arrow(0x2192);
    switch (conversion) {
    case DeliveryConversion::hlg:
        return QStringLiteral("HDR (HLG) ") + arrow + QStringLiteral(" SDR");
    case DeliveryConversion::pq:
        return QStringLiteral("HDR (PQ) ") + arrow + QStringLiteral(" SDR");
    case DeliveryConversion::wideGamut:
        return QStringLiteral("BT.2020 ") + arrow + QStringLiteral(" BT.709");
    case DeliveryConversion::none:
        break;
    }
    return {};
}

bool looksHighDefinition(int64_t width, int64_t height)
{
    return width >= 1280 || height > 576;
}

QString sourceMatrix(const ColorTags& tags, int64_t width, int64_t height)
{
    const QString& space = tags.space;
    if (space == QLatin1String("bt709"))
        return QStringLiteral("bt709");
    if (space == QLatin1String("smpte170m") || space == QLatin1String("bt470bg"))
        return QStringLiteral("bt601");
    if (space == QLatin1String("bt2020nc") || space == QLatin1String("bt2020c"))
        return QStringLiteral("bt2020");
    if (space == QLatin1String("smpte240m") || space == QLatin1String("fcc"))
        return space;
    return looksHighDefinition(width, height) ? QStringLiteral("bt709") : QStringLiteral("bt601");
}

bool isFullRange(const ColorTags& tags)
{
    return tags.range == QLatin1String("pc");
}

QString scalerReadOptions(const ColorTags& tags, int64_t width, int64_t height)
{
    return QStringLiteral("in_color_matrix=%1:in_range=%2")
        .arg(sourceMatrix(tags, width, height), isFullRange(tags) ? QStringLiteral("pc") : QStringLiteral("tv"));
}

QString zscaleReadOptions(const ColorTags& tags, int64_t width, int64_t height)
{
    const QString matrix = sourceMatrix(tags, width, height);
    const QString zimgMatrix = matrix == QLatin1String("bt2020")  ? QStringLiteral("2020_ncl")
                             : matrix == QLatin1String("bt601")   ? QStringLiteral("170m")
                             : matrix == QLatin1String("bt709")   ? QStringLiteral("709")
                             : matrix == QLatin1String("smpte240m") ? QStringLiteral("240m")
                                                                  : matrix;
    return QStringLiteral("min=%1:rin=%2:m=gbr:r=full")
        .arg(zimgMatrix, isFullRange(tags) ? QStringLiteral("full") : QStringLiteral("limited"));
}

QString deliveryConversionName(DeliveryConversion conversion)
{
    switch (conversion) {
    case DeliveryConversion::hlg:
        return QStringLiteral("hlg");
    case DeliveryConversion::pq:
        return QStringLiteral("pq");
    case DeliveryConversion::wideGamut:
        return QStringLiteral("bt2020");
    case DeliveryConversion::none:
        break;
    }
    return {};
}

}  // namespace tavrelune
