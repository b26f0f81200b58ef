// The right pane: every export choice and per-clip grade control, as a
// scrolling column of cards (LUT, Watermark, Per clip, Export) above a
// footer that never scrolls away: the output folder, the convert button and
// the forecast of what the batch will write ("About 1.4 GB in 3 files").
//
// Main thread. The cards follow the controller, which must outlive them.
#pragma once

#include <QWidget>

class QLabel;
class QScrollArea;
class QScrollBar;

namespace tavrelune {
class AppModel;
}

namespace tavrelune::ui {

class AdjustmentsCard;
class ConvertButton;
class ExportCard;
class LutCard;
class OutputFolderCard;
class WatermarkCard;

class Inspector : public QWidget {
    Q_OBJECT
public:
    explicit Inspector(AppModel& model, QWidget* parent = nullptr);

    LutCard* lutCard() const { return lut_; }
    WatermarkCard* watermarkCard() const { return watermark_; }
    AdjustmentsCard* adjustmentsCard() const { return adjustments_; }
    ExportCard* exportCard() const { return export_; }
    OutputFolderCard* outputFolderCard() const { return output_; }
    ConvertButton* convertButton() const { return convert_; }
    QWidget* footer() const { return footer_; }
    QString forecastText() const;

    // The scrolling part holding the cards.
    QScrollArea* cards() const { return cards_; }
    QScrollBar* verticalScrollBar() const;
    void ensureWidgetVisible(QWidget* child);

private:
    QScrollArea* cards_;
    QWidget* footer_;
    LutCard* lut_;
    WatermarkCard* watermark_;
    AdjustmentsCard* adjustments_;
    ExportCard* export_;
    OutputFolderCard* output_;
    ConvertButton* convert_;
    QLabel* forecast_;
};

}  // namespace tavrelune::ui
