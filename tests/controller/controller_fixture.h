// A real controller on real files: private working and output folders in a
// temporary folder, canned answers for the choosers, and the software
// encoders so results don't depend on the machine's hardware.
#pragma once

#include "controller/app_model.h"
#include "async/blocking_wait.h"
#include "support/media_fixtures.h"
#include "support/temp_folder.h"

#include <QDir>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace tavrelune::test {

class CannedDesktop : public DesktopServices {
public:
    QStringList choose(const ChooserRequest& request) override
    {
        requests.push_back(request);
        return answers.isEmpty() ? QStringList() : answers.takeFirst();
    }
    void showInFileManager(const QString& folder, const QString& file) override
    {
        shown << folder + "|" + file;
    }

    QList<QStringList> answers;  // one per chooser call; none: cancelled
    std::vector<ChooserRequest> requests;
    QStringList shown;
};

class ControllerTest : public ::testing::Test {
protected:
    ControllerTest()
    {
        QDir().mkpath(outputFolder());
        makeModel(ToolLocator::fromEnvironment());
    }

    // A new controller whose tools are looked for in `folder` first (the
    // real ones still come from PATH).
    void useToolsIn(const QString& folder)
    {
        model.reset();
        makeModel(ToolLocator({folder, {}, qEnvironmentVariable("PATH")}));
    }

    // A new controller that learns free space from `query`.
    void useFreeSpace(FreeSpaceQuery query)
    {
        freeSpace = std::move(query);
        model.reset();
        makeModel(ToolLocator::fromEnvironment());
    }

    void makeModel(ToolLocator tools)
    {
        AppModel::Options options;
        options.outputFolder = std::optional<QString>(outputFolder());
        options.workspace = workingFolder();
        options.toolLocator = std::move(tools);
        options.now = [] { return QDateTime(QDate(2025, 3, 7), QTime(14, 5, 9), Qt::UTC); };
        options.audioOutput = QStringLiteral("null");
        options.freeSpace = freeSpace;
        model = std::make_unique<AppModel>(options);
        model->ffmpeg().pinSoftwareEncoders();
        model->setDesktopServices(&desktop);
    }

    QString outputFolder() const { return root.path() + "/out"; }
    QString workingFolder() const { return root.path() + "/work"; }
    // This controller's run folder inside the working folder.
    QString workspace() const { return model->workspace(); }

    QString clip(const QString& name, const ClipSpec& spec = {})
    {
        const QString path = root.file(name);
        QDir().mkpath(QFileInfo(path).absolutePath());
        makeClip(path, spec);
        return path;
    }

    static QList<QUrl> urls(const QStringList& paths)
    {
        QList<QUrl> result;
        for (const QString& path : paths)
            result << QUrl::fromLocalFile(path);
        return result;
    }

    void addAndProbe(const QStringList& paths)
    {
        model->addURLs(urls(paths));
        waitForTask(model->probesFinished());
    }

    void convert()
    {
        model->startConversion();
        waitForTask(model->conversionFinished());
    }

    void convertAgain()
    {
        model->convertAllAgain();
        waitForTask(model->conversionFinished());
    }

    QStringList outputNames() const
    {
        return QDir(outputFolder()).entryList(QDir::Files, QDir::Name);
    }

    // Everything in the output folder, hidden entries included.
    QStringList outputEntries() const
    {
        return QDir(outputFolder()).entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                                              QDir::Name);
    }

    ClipItem clipAt(int position) const { return model->clips().at(position); }

    TempFolder root;
    CannedDesktop desktop;
    FreeSpaceQuery freeSpace = freeSpaceOnDisk;
    std::unique_ptr<AppModel> model;
};

}  // namespace tavrelune::test
