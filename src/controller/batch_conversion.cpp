// Converting the batch: one clip after the other, or parts joined into one.
#include "controller/app_model.h"

#include "controller/output_claim.h"
#include "controller/output_naming.h"
#include "engine/concat_job.h"
#include "async/next_signal.h"
#include "engine/silent_track.h"
#include "grading/cube_writer.h"
#include "model/media_type.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

namespace tavrelune {

void AppModel::startConversion()
{
    commitLiveGrade();
    if (canConvert())
        beginBatch(false);
}

void AppModel::convertAllAgain()
{
    commitLiveGrade();
    if (canConvertAgain())
        beginBatch(true);
}

void AppModel::beginBatch(bool again)
{
    const QString folder = outputFolder_.toLocalFile();
    const QList<ClipItem> planned = tavrelune::clipsToConvert(clips_, batchInputs(), again);
    if (const auto shortage = spaceShortageFor(folder, planned)) {
        setErrorMessage(*shortage);
        setStatusMessage(QStringLiteral("Not started: not enough free space."));
        return;
    }
    pausePlayback(true);
    trimPlayer_->pause();
    trimClock_.setIsPlaying(false);
    QDir().mkpath(folder);

    setIsConverting(true);
    setConversionFraction(0);
    setErrorMessage(QString());
    // Clips converted and unchanged keep their mark; the rest start afresh.
    QList<ClipItem> reset = clips_;
    for (ClipItem& clip : reset) {
        if (std::none_of(planned.begin(), planned.end(), [&clip](const ClipItem& p) { return p.id == clip.id; }))
            continue;
        clip.status = ClipStatus::ready;
        clip.progress = 0;
        clip.errorMessage.reset();
    }
    setClips(std::move(reset));

    convertTask_.request_stop();
    convertTask_ = std::stop_source();
    runBatch(folder, again, convertTask_.get_token());  // runs on; stopped through convertTask_
}

// The outputs and the parts of a combined export both go to the output
// folder (the parts in a hidden folder there), so both need room there.
std::optional<QString> AppModel::spaceShortageFor(const QString& outputFolder,
                                                  const QList<ClipItem>& planned) const
{
    const SizeForecast forecast = forecastBatch(planned, settings_);
    return spaceShortage({{outputFolder, forecast.outputBytes()}, {outputFolder, forecast.parts}}, freeSpace_);
}

void AppModel::cancelConversion()
{
    convertTask_.request_stop();
    ffmpeg_.cancel();
    setIsConverting(false);
    setStatusMessage(QStringLiteral("Conversion stopped."));
}

void AppModel::revealOutput()
{
    if (outputFolder_.isEmpty() || !desktop_)
        return;
    desktop_->showInFileManager(outputFolder_.toLocalFile(), QString());
}

void AppModel::revealClipOutput(const QUuid& id)
{
    const auto clip = std::find_if(clips_.begin(), clips_.end(), [&id](const ClipItem& c) { return c.id == id; });
    if (clip == clips_.end() || clip->status != ClipStatus::done || !clip->outputURL || !desktop_)
        return;
    const QFileInfo file(clip->outputURL->toLocalFile());
    desktop_->showInFileManager(file.absolutePath(), file.absoluteFilePath());
}

QCoro::Task<void> AppModel::conversionFinished()
{
    QPointer<AppModel> self(this);
    while (self && batchRunning_)
        co_await nextSignal(this, &AppModel::batchEnded);
}

void AppModel::applyProgress(const QUuid& clip, double start, double share, double fraction)
{
    updateClip(clip, [fraction](ClipItem& stored) { stored.progress = fraction; });
    setConversionFraction(start + share * fraction);
}

QString AppModel::finalStatus(bool cancelled, bool stopped, bool combine, const QList<ClipItem>& planned) const
{
    const auto count = [this, &planned](ClipStatus status) {
        return static_cast<int>(std::count_if(clips_.begin(), clips_.end(), [&](const ClipItem& clip) {
            return clip.status == status && std::any_of(planned.begin(), planned.end(), [&clip](const ClipItem& p) {
                       return p.id == clip.id;
                   });
        }));
    };
    const int succeeded = count(ClipStatus::done);
    const int failed = count(ClipStatus::failed);
    if (cancelled || (stopped && succeeded == 0 && failed == 0))
        return QStringLiteral("Conversion stopped.");
    if (failed > 0)
        return QStringLiteral("Finished: %1 succeeded, %2 failed.").arg(succeeded).arg(failed);
    if (combine)
        return QStringLiteral("Done: combined %1 clips into one video.").arg(succeeded);
    return QStringLiteral("Done: converted %1 clip%2.").arg(succeeded).arg(succeeded == 1 ? "" : "s");
}

QCoro::Task<void> AppModel::runBatch(QString outputFolder, bool again, std::stop_token stop)
{
    QPointer<AppModel> self(this);
    batchRunning_ = true;
    const auto finishTask = [this] {
        batchRunning_ = false;
        notifyDerived();
        Q_EMIT batchEnded();
    };

    // Everything the batch works with is fixed here. Clips added, and a LUT
    // or watermark chosen while it runs, wait for the next batch; the staged
    // files it reads are copies of its own.
    const QList<ClipItem> listed = clips_;
    const BatchInputs inputs = batchInputs();
    const QList<ClipItem> planned = tavrelune::clipsToConvert(listed, inputs, again);
    const EncodeSettings settings = settings_;
    const BatchLook look = currentLook();
    const QString lutName = QFileInfo(lutURL_.toLocalFile()).fileName();
    const auto inBatch = [&planned](const QUuid& id) {
        return std::any_of(planned.begin(), planned.end(), [&id](const ClipItem& clip) { return clip.id == id; });
    };
    std::optional<QString> lutPath;
    std::optional<WatermarkOverlay> watermark;
    QStringList batchFiles;  // removed when the batch ends
    QString failedStep;  // the status line when the step in hand fails
    try {
        failedStep = QStringLiteral("Could not prepare the LUT.");
        if ((lutPath = preparedLUTPath()) && QFileInfo(*lutPath).path() == QDir(workspace_).path())
            batchFiles << (*lutPath = batchCopy(*lutPath));
        failedStep = QStringLiteral("Could not prepare the watermark.");
        if ((watermark = preparedExportWatermark()))
            batchFiles << (watermark->imagePath = batchCopy(watermark->imagePath));
    } catch (...) {
        for (const QString& file : batchFiles)
            QFile::remove(file);
        setIsConverting(false);
        setErrorMessage(describe(std::current_exception()));
        setStatusMessage(failedStep);
        finishTask();
        co_return;
    }

    const BatchPlan plan = planBatch(planned, settings);
    const QList<double> shares = progressShares(planned, plan);
    double done = 0;  // the finished steps' shares
    std::optional<RunFolder> partsFolder;
    if (plan.combine) {
        RunFolder::sweepStale(outputFolder, partsFolderPrefix());
        QString problem;
        partsFolder = RunFolder::create(outputFolder, partsFolderPrefix(), &problem);
        if (!partsFolder) {
            setIsConverting(false);
            setErrorMessage(problem);
            setStatusMessage(QStringLiteral("Could not prepare the combined video."));
            finishTask();
            co_return;
        }
    }
    QStringList parts;
    double partsDuration = 0;  // as probed
    QStringList silentFirstTrack;  // clips whose sound is only in later tracks
    bool stopped = false;

    for (int position = 0; position < plan.clipCount; ++position) {
        if (stop.stop_requested()) {
            stopped = true;
            break;
        }
        const ClipItem& clip = planned[position];
        updateClip(clip.id, [](ClipItem& stored) {
            stored.status = ClipStatus::converting;
            stored.progress = 0;
        });
        // A full selection: the sliders and the preview follow the clip, so
        // the next commit writes its own grade back, not the previous one's.
        selectClip(clip.id);
        setStatusMessage((plan.combine ? QStringLiteral("Preparing ") : QStringLiteral("Converting "))
                         + clip.name + QChar(0x2026));

        // Named, not written inside the co_await: GCC 12 destroys a lambda
        // temporary of a co_await expression twice.
        const FFmpegService::ProgressCallback onProgress = [self, id = clip.id, done,
                                                            share = shares[position]](double fraction) {
            if (self)
                self->applyProgress(id, done, share, fraction);
        };
        const auto chooseName = [&clip, &outputFolder](const OutputNaming::PathTaken& taken) {
            return OutputNaming::uniqueOutputPath(clip.url.toLocalFile(), outputFolder, taken);
        };
        QString output;
        std::optional<OutputClaim> claim;
        std::exception_ptr failure;
        try {
            if (plan.combine) {
                output = QDir(partsFolder->path()).filePath(partFileName(position));
            } else {
                claim = OutputClaim::claim(chooseName, workspace_);
                output = claim->finalPath();
            }
            ClipConversion job = conversionFor(clip, plan, claim ? claim->temporaryPath() : output, lutPath,
                                               watermark, settings);
            prepareColour(job, clip, look, &batchFiles);
            if (!settings.removeAudio && clip.audioTrackCount() > 1) {
                // Only a notice: a clip the check cannot read still converts.
                std::exception_ptr unchecked;
                try {
                    if (co_await ffmpeg_.firstAudioTrackSilent(job.input, clip.audioTrackCount(), stop))
                        silentFirstTrack << clip.name;
                } catch (...) {
                    unchecked = std::current_exception();
                }
                if (unchecked && isCancellation(unchecked))
                    std::rethrow_exception(unchecked);
            }
            co_await ffmpeg_.convertClip(job, onProgress, stop);
            const MediaInfo made =
                co_await checkFinishedOutput(job.output, expectedClipOutput(clip, plan, settings), stop);
            partsDuration += made.duration;
            if (claim)
                claim->commit();
        } catch (...) {
            failure = std::current_exception();
        }
        if (!self)
            co_return;
        if (failure) {
            claim.reset();  // removes this run's unfinished file and its claim
            if (stop.stop_requested() || isCancellation(failure)) {
                stopped = true;
                updateClip(clip.id, [](ClipItem& stored) { stored.status = ClipStatus::ready; });
                break;
            }
            const QString description = describe(failure);
            updateClip(clip.id, [&description](ClipItem& stored) {
                stored.status = ClipStatus::failed;
                stored.errorMessage = description;
            });
            setErrorMessage(description);
            // A join needs every part; separate files go on with the next
            // clip, so one bad file does not hold up the rest.
            if (plan.combine) {
                stopped = true;
                break;
            }
            done += shares[position];
            setConversionFraction(done);
            continue;
        }
        updateClip(clip.id, [&](ClipItem& stored) {
            stored.progress = 1;
            if (plan.combine) {
                return;
            }
            stored.status = ClipStatus::done;
            stored.outputURL = QUrl::fromLocalFile(output);
            stored.exportedAs = exportSignature(clip, listed, inputs);
        });
        if (plan.combine)
            parts << output;
        done += shares[position];
        setConversionFraction(done);
    }

    if (plan.combine && !stopped && parts.size() == plan.clipCount) {
        setStatusMessage(QStringLiteral("Combining clips") + QChar(0x2026));
        double sum = 0;
        for (const ClipItem& clip : planned)
            sum += exportDuration(clip);
        const FFmpegService::ProgressCallback onJoinProgress = [self, done, share = shares.last()](double fraction) {
            if (self)
                self->setConversionFraction(done + share * fraction);
        };
        const QDateTime startedAt = now_();
        const auto chooseName = [&outputFolder, &startedAt, &settings](const OutputNaming::PathTaken& taken) {
            return OutputNaming::uniqueCombinedOutputPath(outputFolder, startedAt, taken, settings.combinedName);
        };
        QString output;
        std::optional<OutputClaim> claim;
        std::exception_ptr failure;
        try {
            claim = OutputClaim::claim(chooseName, workspace_);
            output = claim->finalPath();
            co_await ffmpeg_.concatenate(parts, claim->temporaryPath(), sum, settings,
                                         plan.normalization.value_or(VideoNormalization{}), onJoinProgress,
                                         stop);
            co_await checkFinishedOutput(claim->temporaryPath(),
                                         expectedJoinedOutput(plan, settings, partsDuration), stop);
            claim->commit();
        } catch (...) {
            failure = std::current_exception();
        }
        claim.reset();  // after a failure: removes what this run made
        if (!self)
            co_return;
        QList<ClipItem> joined = clips_;
        if (!failure) {
            for (ClipItem& clip : joined) {
                if (!inBatch(clip.id))
                    continue;
                clip.status = ClipStatus::done;
                clip.progress = 1;
                clip.outputURL = QUrl::fromLocalFile(output);
                const auto plannedClip = std::find_if(planned.begin(), planned.end(),
                                                      [&clip](const ClipItem& p) { return p.id == clip.id; });
                clip.exportedAs = exportSignature(*plannedClip, listed, inputs);
            }
            setClips(std::move(joined));
            setConversionFraction(1);
        } else if (stop.stop_requested() || isCancellation(failure)) {
            stopped = true;
        } else {
            stopped = true;
            const QString description = describe(failure);
            setErrorMessage(description);
            for (ClipItem& clip : joined) {
                if (clip.status == ClipStatus::failed || !inBatch(clip.id))
                    continue;
                clip.status = ClipStatus::failed;
                clip.errorMessage = description;
            }
            setClips(std::move(joined));
        }
    }

    // Clips that did not end up in a finished file are ready again; none
    // is left spinning.
    QList<ClipItem> ended = clips_;
    for (ClipItem& clip : ended) {
        if (clip.status == ClipStatus::converting) {
            clip.status = ClipStatus::ready;
            clip.progress = 0;
        }
    }
    setClips(std::move(ended));
    setIsConverting(false);
    partsFolder.reset();  // removes the parts
    QString status = finalStatus(stop.stop_requested(), stopped, plan.combine, planned);
    if (settings.matchPreview && look.previewLacksLUT)
        status += QStringLiteral(" The preview cannot show the LUT %1, so the filter chain graded the clips.")
                      .arg(lutName);
    if (!silentFirstTrack.isEmpty())
        status += QLatin1Char(' ') + silentFirstTrackNotice(silentFirstTrack);
    setStatusMessage(status);
    for (const QString& file : batchFiles)
        QFile::remove(file);
    finishTask();
}

QCoro::Task<MediaInfo> AppModel::checkFinishedOutput(QString path, ExpectedOutput expected, std::stop_token stop)
{
    // A stop that came as ffmpeg finished still counts: the user asked for
    // no more files.
    if (stop.stop_requested())
        throw FFmpegError::cancelled();
    MediaInfo probed;
    try {
        probed = co_await ffmpeg_.probe(path, stop);
    } catch (const FFmpegError& error) {
        if (error.kind() != FFmpegError::Kind::conversionFailed && error.kind() != FFmpegError::Kind::probeFailed)
            throw;
        // ffprobe refused the file: one line naming the check, not ffprobe's whole complaint.
        const QString reason = error.payload().trimmed().section(QLatin1Char('\n'), -1);
        throw FFmpegError::conversionFailed(QStringLiteral("Output check failed: the file cannot be read (")
                                            + reason + QStringLiteral(")."));
    }
    if (stop.stop_requested())
        throw FFmpegError::cancelled();
    if (const auto mismatch = outputMismatch(expected, probed))
        throw FFmpegError::conversionFailed(*mismatch);
    co_return probed;
}

}  // namespace tavrelune
