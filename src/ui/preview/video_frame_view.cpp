#include "ui/preview/video_frame_view.h"

#include "model/picture_fit.h"
#include "preview/clip_preview_player.h"

#include <QOpenGLContext>
#include <QOpenGLShaderProgram>
#include <chrono>
#include <cmath>

namespace tavrelune {

namespace {

#ifndef GL_BGRA
#define GL_BGRA 0x80E1
#endif

const char* const vertexShader = R"(
attribute vec2 position;
attribute vec2 texturePosition;
varying vec2 sample;
void main()
{
    sample = texturePosition;
    gl_Position = vec4(position, 0.0, 1.0);
}
)";

// Desktop OpenGL takes the BGRA bytes as they are; OpenGL ES only knows
// RGBA uploads, so there the shader swaps red and blue back.
const char* const fragmentShader = R"(
#ifdef GL_ES
precision mediump float;
#endif
uniform sampler2D picture;
varying vec2 sample;
void main()
{
    vec4 texel = texture2D(picture, sample);
#ifdef SWAP_RED_BLUE
    gl_FragColor = vec4(texel.b, texel.g, texel.r, 1.0);
#else
    gl_FragColor = vec4(texel.rgb, 1.0);
#endif
}
)";

// A strip over the whole viewport; the picture's first row is at the top.
const GLfloat corners[] = {-1, -1, 1, -1, -1, 1, 1, 1};
const GLfloat textureCorners[] = {0, 1, 1, 1, 0, 0, 1, 0};

}  // namespace

VideoFrameView::VideoFrameView(QWidget* parent) : QOpenGLWidget(parent)
{
    clock_.start();
    repaintTimer_.setSingleShot(true);
    repaintTimer_.setTimerType(Qt::PreciseTimer);
    connect(&repaintTimer_, &QTimer::timeout, this, [this] { update(); });
}

VideoFrameView::~VideoFrameView()
{
    releaseGL();
}

void VideoFrameView::setPlayer(ClipPreviewPlayer* player)
{
    if (player_ == player)
        return;
    disconnect(loadConnection_);
    disconnect(frameConnection_);
    player_ = player;
    pulled_.reset();
    contentCleared();
    present(nullptr);
    if (!player)
        return;
    loadConnection_ = connect(player, &ClipPreviewPlayer::loadIDChanged, this, &VideoFrameView::followLoadID);
    frameConnection_ = connect(player, &ClipPreviewPlayer::frameAvailable, this, &VideoFrameView::pullFrame);
    currentLoadID_ = player->loadID();
    playerAttached(player);
    pullFrame();
}

void VideoFrameView::setStatistics(std::shared_ptr<FrameStatistics> statistics)
{
    statistics_ = std::move(statistics);
}

void VideoFrameView::followLoadID(const QUuid& loadID)
{
    if (loadID == currentLoadID_)
        return;
    currentLoadID_ = loadID;
    pulled_.reset();
    contentCleared();
    present(nullptr);
    // The new clip's first frame may be there already.
    pullFrame();
}

void VideoFrameView::pullFrame()
{
    if (!player_)
        return;
    for (std::shared_ptr<const VideoFrame>& frame : player_->framesAfter(pulled_ ? pulled_->sequence : 0)) {
        pulled_ = frame;
        frameArrived(std::move(frame));
    }
}

void VideoFrameView::present(std::shared_ptr<const VideoFrame> picture)
{
    if (picture) {
        waiting_.push(std::move(picture));
    } else {
        waiting_.clear();
        picture_.reset();
    }
    scheduleRepaint();
}

void VideoFrameView::scheduleRepaint()
{
    if (repaintTimer_.isActive())
        return;
    const qint64 delay = pacer_.delayNs(clock_.nsecsElapsed());
    if (delay == 0)
        update();
    else
        repaintTimer_.start(static_cast<int>((delay + 999'999) / 1'000'000));
}

QRect VideoFrameView::fittedRect(QSize picture, QSize target)
{
    if (picture.width() <= 1 || picture.height() <= 1)
        return QRect(QPoint(0, 0), picture);
    const QRectF fitted = fitCentred(QSizeF(picture), QSizeF(target));
    const int width = std::max(1, static_cast<int>(std::lround(fitted.width())));
    const int height = std::max(1, static_cast<int>(std::lround(fitted.height())));
    return {(target.width() - width) / 2, (target.height() - height) / 2, width, height};
}

void VideoFrameView::initializeGL()
{
    initializeOpenGLFunctions();
    // A widget moved to another window gets a new context: let go of the
    // old one's objects while it is still current.
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, &VideoFrameView::releaseGL,
            Qt::UniqueConnection);
    program_ = std::make_unique<QOpenGLShaderProgram>();
    program_->addShaderFromSourceCode(QOpenGLShader::Vertex, vertexShader);
    bgraUpload_ = !context()->isOpenGLES();
    const QByteArray swap = bgraUpload_ ? QByteArray() : QByteArrayLiteral("#define SWAP_RED_BLUE\n");
    program_->addShaderFromSourceCode(QOpenGLShader::Fragment, swap + fragmentShader);
    program_->bindAttributeLocation("position", 0);
    program_->bindAttributeLocation("texturePosition", 1);
    if (!program_->link())
        qWarning("tavrelune: preview shader: %s", qPrintable(program_->log()));
}

void VideoFrameView::releaseGL()
{
    if (!program_ && !texture_)
        return;
    makeCurrent();
    if (texture_)
        glDeleteTextures(1, &texture_);
    texture_ = 0;
    textureSize_ = {};
    uploaded_.reset();
    program_.reset();
    doneCurrent();
}

void VideoFrameView::upload(const VideoFrame& picture)
{
    const QSize size(picture.width(), picture.height());
    if (!texture_) {
        glGenTextures(1, &texture_);
        glBindTexture(GL_TEXTURE_2D, texture_);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
    }
    glBindTexture(GL_TEXTURE_2D, texture_);
    if (size != textureSize_) {
        glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, size.width(), size.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                     nullptr);
        textureSize_ = size;
    }
    const GLenum format = bgraUpload_ ? GL_BGRA : GL_RGBA;
    const bool rowLength = !context()->isOpenGLES() || context()->format().majorVersion() >= 3;
    if (rowLength) {
        glPixelStorei(GL_UNPACK_ROW_LENGTH, static_cast<GLint>(picture.stride() / 4));
        glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, size.width(), size.height(), format, GL_UNSIGNED_BYTE,
                        picture.data());
        glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
    } else {
        for (int y = 0; y < size.height(); ++y)
            glTexSubImage2D(GL_TEXTURE_2D, 0, 0, y, size.width(), 1, format, GL_UNSIGNED_BYTE,
                            picture.data() + y * picture.stride());
    }
}

void VideoFrameView::paintGL()
{
    pacer_.redrew(clock_.nsecsElapsed());
    const qreal ratio = devicePixelRatioF();
    const QSize target(static_cast<int>(std::lround(width() * ratio)),
                       static_cast<int>(std::lround(height() * ratio)));
    if (target.width() <= 1 || target.height() <= 1)
        return;
    const auto started = std::chrono::steady_clock::now();
    glViewport(0, 0, target.width(), target.height());
    glClearColor(0, 0, 0, 1);
    glClear(GL_COLOR_BUFFER_BIT);
    if (!waiting_.empty()) {
        picture_ = waiting_.pop();
        if (!waiting_.empty())
            scheduleRepaint();
    }
    const std::shared_ptr<const VideoFrame> picture = picture_;
    if (!picture || !program_ || !program_->isLinked())
        return;
    const bool fresh = picture != uploaded_;
    if (fresh) {
        upload(*picture);
        uploaded_ = picture;
    }
    const QRect area = fittedRect({picture->width(), picture->height()}, target);
    glViewport(area.x(), target.height() - area.y() - area.height(), area.width(), area.height());
    glDisable(GL_BLEND);
    program_->bind();
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture_);
    // Drawn one to one, a picture needs no filtering (cheaper on software
    // rasterisers).
    const GLint filter = area.size() == textureSize_ ? GL_NEAREST : GL_LINEAR;
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, filter);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, filter);
    program_->setUniformValue("picture", 0);
    program_->enableAttributeArray(0);
    program_->enableAttributeArray(1);
    program_->setAttributeArray(0, GL_FLOAT, corners, 2);
    program_->setAttributeArray(1, GL_FLOAT, textureCorners, 2);
    glDrawArrays(GL_TRIANGLE_STRIP, 0, 4);
    program_->disableAttributeArray(0);
    program_->disableAttributeArray(1);
    program_->release();

    if (!fresh)
        return;
    if (statistics_) {
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - started;
        statistics_->record(FrameStatistics::Stage::draw, took.count());
    }
    Q_EMIT frameDrawn(picture->sequence);
}

}  // namespace tavrelune
