// Which clips a batch converts. A clip converted before, whose file is still
// there and whose export would come out the same (same file, grade, trim,
// LUT, watermark, settings and folder), is not made again unless asked; a
// clip whose file could not be read is never part of a batch.
//
// Pure functions over plain values; any thread.
#pragma once

#include "model/clip_item.h"
#include "model/encode_settings.h"
#include "watermark/watermark_settings.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QUrl>

namespace tavrelune {

// What every clip of a batch is exported with.
struct BatchInputs {
    QUrl lut;
    WatermarkSettings watermark;
    EncodeSettings settings;
    QString outputFolder;
    // Counts choices of a LUT or watermark: each choice reads the file
    // afresh, so it counts as a change even when the file is the same.
    int lookChoices = 0;
};

// A digest of everything the clip's export depends on (the clip's own file
// by its time on disk). In a combined export
// the order of the readable clips is part of every clip's export.
QByteArray exportSignature(const ClipItem& clip, const QList<ClipItem>& clips, const BatchInputs& inputs);

// Converted, its file still on disk, and nothing changed since.
bool isUpToDate(const ClipItem& clip, const QList<ClipItem>& clips, const BatchInputs& inputs);

// The clips the next batch converts, in list order: the readable ones that
// are not up to date, or every readable one when `again`. A combined export
// is one file: all readable clips when any of them needs it, else none.
QList<ClipItem> clipsToConvert(const QList<ClipItem>& clips, const BatchInputs& inputs, bool again);

}  // namespace tavrelune
