#include "ui/icons.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

namespace tavrelune::ui::icons {

namespace {

// Every monochrome drawing is made in this colour and re-coloured on load.
constexpr QLatin1String drawingColor("#000000");

QByteArray resource(const QString& name)
{
    QFile file(QStringLiteral(":/icons/%1.svg").arg(name));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Draws an SVG at any size, so the icon is sharp at every scale. Disabled
// icons are drawn faded.
class SvgEngine : public QIconEngine {
public:
    explicit SvgEngine(QByteArray svg) : svg_(std::move(svg)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override
    {
        QSvgRenderer renderer(svg_);
        painter->save();
        if (mode == QIcon::Disabled)
            painter->setOpacity(painter->opacity() * 0.4);
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(painter, rect);
        painter->restore();
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize& size, QIcon::Mode mode, QIcon::State state, qreal scale) override
    {
        QPixmap pixmap(size * scale);
        pixmap.fill(Qt::transparent);
        {
            QPainter painter(&pixmap);
            paint(&painter, QRect(QPoint(), pixmap.size()), mode, state);
        }
        pixmap.setDevicePixelRatio(scale);
        return pixmap;
    }

    QIconEngine* clone() const override { return new SvgEngine(svg_); }
    QString key() const override { return QStringLiteral("tavrelune-svg"); }

private:
    QByteArray svg_;
};

QIcon fromSvg(QByteArray svg)
{
    if (svg.isEmpty())
        return {};
    return QIcon(new SvgEngine(std::move(svg)));
}

}  // namespace

QIcon symbol(const QString& name, const QColor& tint)
{
    if (QIcon::hasThemeIcon(name))
        return QIcon::fromTheme(name);
    return bundled(name, tint);
}

QIcon bundled(const QString& name, const QColor& tint)
{
    QByteArray svg = resource(name);
    svg.replace(drawingColor.data(), tint.name(QColor::HexRgb).toLatin1());
    return fromSvg(std::move(svg));
}

QIcon colored(const QString& name) { return fromSvg(resource(name)); }

QIcon application()
{
    if (QIcon::hasThemeIcon(QStringLiteral("tavrelune")))
        return QIcon::fromTheme(QStringLiteral("tavrelune"));
    return colored(QStringLiteral("tavrelune"));
}

}  // namespace tavrelune::ui::icons
