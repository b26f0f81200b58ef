#include "ui/remembered_settings.h"

#include "controller/app_model.h"
#include "ui/main_window.h"

#include <QDir>
#include <QSettings>
#include <QSplitter>

namespace tavrelune::ui {

namespace {

const QString folderKey = QStringLiteral("export/outputFolder");
const QString codecKey = QStringLiteral("export/codec");
const QString qualityKey = QStringLiteral("export/quality");
const QString combineKey = QStringLiteral("export/combine");
const QString removeAudioKey = QStringLiteral("export/removeAudio");
const QString matchPreviewKey = QStringLiteral("export/matchPreview");
const QString geometryKey = QStringLiteral("window/geometry");
const QString panesKey = QStringLiteral("window/panes");
const QString recentJobsKey = QStringLiteral("jobs/recent");

void readBool(const QSettings& store, const QString& key, bool& target)
{
    const QVariant value = store.value(key);
    if (value.isValid())
        target = value.toBool();
}

}  // namespace

RememberedSettings::RememberedSettings(QSettings& store, AppModel& model, MainWindow& window)
    : store_(store), model_(model), window_(window)
{
    restore();
    connect(&model_, &AppModel::settingsChanged, this, &RememberedSettings::saveChoices);
    connect(&model_, &AppModel::outputFolderChanged, this, &RememberedSettings::saveChoices);
    connect(&window_.jobDocument(), &JobDocument::recentJobsChanged, this, [this] {
        store_.setValue(recentJobsKey, window_.jobDocument().recentJobs());
        store_.sync();
    });
}

RememberedSettings::~RememberedSettings() { saveWindowShape(); }

// A value that no longer reads (an older or hand-edited file) keeps the
// default; a folder that has gone is not offered.
void RememberedSettings::restore()
{
    EncodeSettings settings = model_.settings();
    if (const auto codec = videoCodecFromCaseName(store_.value(codecKey).toString()))
        settings.codec = *codec;
    if (const auto quality = qualityPresetFromCaseName(store_.value(qualityKey).toString()))
        settings.quality = *quality;
    readBool(store_, combineKey, settings.concatenateClips);
    readBool(store_, removeAudioKey, settings.removeAudio);
    readBool(store_, matchPreviewKey, settings.matchPreview);
    model_.setSettings(settings);

    const QString folder = store_.value(folderKey).toString();
    if (!folder.isEmpty() && QDir(folder).exists())
        model_.setOutputFolder(QUrl::fromLocalFile(folder));

    window_.jobDocument().setRecentJobs(store_.value(recentJobsKey).toStringList());
    if (const QByteArray geometry = store_.value(geometryKey).toByteArray(); !geometry.isEmpty())
        window_.restoreGeometry(geometry);
    if (const QByteArray panes = store_.value(panesKey).toByteArray(); !panes.isEmpty())
        window_.splitter()->restoreState(panes);
}

void RememberedSettings::saveChoices()
{
    const EncodeSettings& settings = model_.settings();
    store_.setValue(codecKey, caseName(settings.codec));
    store_.setValue(qualityKey, caseName(settings.quality));
    store_.setValue(combineKey, settings.concatenateClips);
    store_.setValue(removeAudioKey, settings.removeAudio);
    store_.setValue(matchPreviewKey, settings.matchPreview);
    if (!model_.outputFolder().isEmpty())
        store_.setValue(folderKey, model_.outputFolder().toLocalFile());
    store_.sync();
}

void RememberedSettings::saveWindowShape()
{
    store_.setValue(geometryKey, window_.saveGeometry());
    store_.setValue(panesKey, window_.splitter()->saveState());
    store_.sync();
}

}  // namespace tavrelune::ui
