// The ffmpeg arguments that write one still frame of a clip as an image.
//
// Pure, safe on any thread. `at` is seconds, `width` pixels; the height
// follows the source's aspect, rounded to an even number.
#pragma once

#include "grading/delivery_table.h"
#include "model/media_info.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <optional>

namespace tavrelune {

// How the clip's pixels are read, as the preview and the export read them
// (see model/delivery_conversion.h): its tags and size, and the delivery
// tables that make an HDR or BT.2020 clip SDR.
struct StillColour {
    ColorTags tags;
    int64_t width = 0;
    int64_t height = 0;
    std::optional<DeliveryTable::TableFiles> deliveryTables;
};

// The image format follows the output's extension. Negative or NaN times
// seek to 0.
QStringList frameExtractionArguments(const QString& from, double at, const QString& output,
                                     int64_t width, const StillColour& colour = {});

}  // namespace tavrelune
