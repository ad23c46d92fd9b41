#pragma once
// Icon engine for the host's named SVG images: renders the image afresh for every requested size and device
// pixel ratio, so icons stay sharp from 16 px tool buttons to 128 px previews. Used by qtHelpers::images.

#include <QIconEngine>
#include <QString>

class SvgIconEngine : public QIconEngine
{
public:
    explicit SvgIconEngine(const QString& name);
    ~SvgIconEngine() override;

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override;
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QSize actualSize(const QSize& size, QIcon::Mode mode, QIcon::State state) override;
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) override;
    QIconEngine* clone() const override;
    QString key() const override;
    QString iconName() override;
    bool isNull() override;

private:
    QString m_name;
};
