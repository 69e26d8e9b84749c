#include "app/backdrop.h"

#include <QFont>
#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>
#include <cmath>

QColor backdrop_surround() { return QColor(18, 44, 74); }

namespace {

// An infusion pump seen from the front: housing, display, keys, a line set.
void draw_pump(QPainter& p, QRectF r) {
    p.setPen(QPen(QColor(190, 205, 220), 2));
    p.setBrush(QColor(232, 238, 244));
    p.drawRoundedRect(r, 10, 10);
    const QRectF display(r.left() + 12, r.top() + 14, r.width() - 24, 40);
    p.setBrush(QColor(20, 60, 40));
    p.setPen(Qt::NoPen);
    p.drawRoundedRect(display, 4, 4);
    p.setPen(QColor(120, 255, 160));
    p.setFont(QFont("Liberation Mono", 11, QFont::Bold));
    p.drawText(display, Qt::AlignCenter, "100.0 ml/h");
    p.setPen(QPen(QColor(150, 165, 180), 1));
    for (int row = 0; row < 3; ++row)
        for (int col = 0; col < 3; ++col) {
            p.setBrush(row == 2 && col == 2 ? QColor(60, 170, 90) : QColor(200, 210, 222));
            p.drawRoundedRect(QRectF(r.left() + 16 + col * 28, r.top() + 66 + row * 22, 22, 16), 3, 3);
        }
    // The line set leaving the pump and the drip chamber above it.
    p.setPen(QPen(QColor(170, 210, 240), 3));
    p.setBrush(Qt::NoBrush);
    QPainterPath tube;
    tube.moveTo(r.center().x(), r.top());
    tube.cubicTo(r.center().x(), r.top() - 30, r.left() - 10, r.top() - 20, r.left() - 14, r.top() - 70);
    p.drawPath(tube);
}

// A trumpet curve: flow error narrowing as the observation window grows.
void draw_trumpet(QPainter& p, QRectF r) {
    p.setPen(QPen(QColor(255, 255, 255, 60), 1));
    p.drawLine(QPointF(r.left(), r.center().y()), QPointF(r.right(), r.center().y()));
    for (int i = 0; i <= 5; ++i) {
        const double x = r.left() + i * r.width() / 5;
        p.drawLine(QPointF(x, r.top()), QPointF(x, r.bottom()));
    }
    QPainterPath upper, lower;
    for (int i = 0; i <= 60; ++i) {
        const double t = i / 60.0;
        const double x = r.left() + t * r.width();
        const double spread = r.height() * 0.45 * std::exp(-2.6 * t) + r.height() * 0.05;
        const double y_up = r.center().y() - spread;
        const double y_dn = r.center().y() + spread * 0.8;
        if (i == 0) {
            upper.moveTo(x, y_up);
            lower.moveTo(x, y_dn);
        } else {
            upper.lineTo(x, y_up);
            lower.lineTo(x, y_dn);
        }
    }
    p.setPen(QPen(QColor(255, 196, 64), 3));
    p.drawPath(upper);
    p.setPen(QPen(QColor(96, 200, 255), 3));
    p.drawPath(lower);
}

}  // namespace

QImage make_backdrop() {
    QImage img(699, 239, QImage::Format_RGB888);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    QLinearGradient sky(0, 0, 0, 239);
    sky.setColorAt(0, QColor(28, 72, 120));
    sky.setColorAt(1, QColor(12, 34, 60));
    p.fillRect(img.rect(), sky);

    draw_pump(p, QRectF(34, 56, 120, 150));
    draw_trumpet(p, QRectF(430, 40, 240, 160));

    p.setPen(Qt::white);
    p.setFont(QFont("Liberation Sans", 30, QFont::Bold));
    p.drawText(QRectF(196, 58, 230, 50), Qt::AlignLeft | Qt::AlignVCenter, "KYT");
    p.setFont(QFont("Liberation Sans", 17));
    p.drawText(QRectF(196, 104, 230, 30), Qt::AlignLeft | Qt::AlignVCenter, "CONSOLE");
    p.setPen(QColor(170, 200, 230));
    p.setFont(QFont("Liberation Sans", 9));
    p.drawText(QRectF(196, 140, 230, 44), Qt::AlignLeft | Qt::TextWordWrap,
               "Infusion device analysis: downloads, live tests, reports and trumpet curves");
    return img;
}

QImage make_logo(int size) {
    QImage img(size, size, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    QPainter p(&img);
    p.setRenderHint(QPainter::Antialiasing);
    const double s = size / 96.0;
    p.scale(s, s);
    QLinearGradient sky(0, 0, 0, 96);
    sky.setColorAt(0, QColor(28, 72, 120));
    sky.setColorAt(1, QColor(12, 34, 60));
    p.setPen(Qt::NoPen);
    p.setBrush(sky);
    p.drawRoundedRect(QRectF(2, 2, 92, 92), 14, 14);
    draw_trumpet(p, QRectF(12, 14, 72, 46));
    p.setPen(Qt::white);
    p.setFont(QFont("Liberation Sans", 17, QFont::Bold));
    p.drawText(QRectF(0, 60, 96, 30), Qt::AlignCenter, "KYT");
    return img;
}
