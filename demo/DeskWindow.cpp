// SPDX-License-Identifier: MIT
#include "DeskWindow.h"

#include "DeskLines.h"
#include "XClient.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace quenthisar::demo {

namespace {

const QColor amber{0xF7, 0xB9, 0x3E};
constexpr int shownClicks = 8;

// Sizes are shares of the window's height, so that every screen gets the same picture.
int share(const QWidget& window, double part) {
    return static_cast<int>(window.height() * part);
}

QFont fontOf(int pixels, QFont::Weight weight = QFont::Normal) {
    QFont font;
    font.setPixelSize(std::max(8, pixels));
    font.setWeight(weight);
    return font;
}

} // namespace

DeskWindow::DeskWindow(Look look, Witness witness)
    : look(std::move(look)), witness(std::move(witness)),
      catchUpType(XClient{qEnvironmentVariable("DISPLAY")}.atom(DeskLines::catchUpMessage)) {
    QCoreApplication::instance()->installNativeEventFilter(this);
    setWindowFlag(Qt::FramelessWindowHint);
    setWindowTitle(this->look.title);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
}

DeskWindow::~DeskWindow() {
    QCoreApplication::instance()->removeNativeEventFilter(this);
}

bool DeskWindow::nativeEventFilter(const QByteArray&, void* message, qintptr*) {
    const auto* event = static_cast<const xcb_client_message_event_t*>(message);
    if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE || event->type != catchUpType)
        return false;
    // The events before this one wait in the toolkit's own queue.
    QTimer::singleShot(0, this, [this, number = event->data.data32[0]] {
        QCoreApplication::processEvents();
        witness(DeskLines::caughtUp(number));
    });
    return true;
}

bool DeskWindow::event(QEvent* event) {
    const auto handled = QWidget::event(event);
    switch (event->type()) {
    case QEvent::WindowActivate:
        witness(QStringLiteral("focus in"));
        becomeReady();
        break;
    case QEvent::WindowDeactivate: witness(QStringLiteral("focus out")); break;
    default: break;
    }
    return handled;
}

void DeskWindow::becomeReady() {
    if (ready || !painted || !isActiveWindow()) return;
    ready = true;
    witness(QStringLiteral("window %1").arg(winId()));
    witness(QStringLiteral("ready"));
}

void DeskWindow::type(const QString& text) {
    for (const auto c : text) {
        if (c == u'\b')
            typed.chop(1);
        else if (c == u'\r' || c == u'\n')
            typed += u'\n';
        else if (c.isPrint())
            typed += c;
    }
    update();
}

void DeskWindow::keyPressEvent(QKeyEvent* event) {
    witness(DeskLines::keyPress(event->nativeScanCode(), event->text(), event->isAutoRepeat()));
    type(event->text());
}

void DeskWindow::keyReleaseEvent(QKeyEvent* event) {
    if (!event->isAutoRepeat()) witness(DeskLines::keyRelease(event->nativeScanCode()));
}

void DeskWindow::mousePressEvent(QMouseEvent* event) {
    pointer = event->position().toPoint();
    witness(DeskLines::button(true, event->button(), *pointer));
    ++clickCount;
    clicks.append(*pointer);
    if (clicks.size() > shownClicks) clicks.removeFirst();
    update();
}

void DeskWindow::mouseReleaseEvent(QMouseEvent* event) {
    witness(DeskLines::button(false, event->button(), event->position().toPoint()));
}

void DeskWindow::mouseMoveEvent(QMouseEvent* event) {
    pointer = event->position().toPoint();
    witness(DeskLines::motion(*pointer));
    update();
}

void DeskWindow::wheelEvent(QWheelEvent* event) {
    witness(DeskLines::wheel(event->angleDelta()));
    scrolled += event->angleDelta().y() / QWheelEvent::DefaultDeltasPerStep;
    update();
}

void DeskWindow::paintEvent(QPaintEvent*) {
    QPainter painter{this};
    painter.setRenderHint(QPainter::Antialiasing);
    paintBackground(painter);
    paintNote(painter);
    paintPointer(painter);
    painted = true;
    becomeReady();
}

void DeskWindow::paintBackground(QPainter& painter) const {
    QLinearGradient sky{QPointF{}, QPointF{width() * 0.4, height() * 1.0}};
    sky.setColorAt(0, look.light);
    sky.setColorAt(1, look.dark);
    painter.fillRect(rect(), sky);

    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor{255, 255, 255, 10});
    const auto radius = share(*this, 0.62);
    painter.drawEllipse(QPoint{width(), height()}, radius, radius);
    painter.drawEllipse(QPoint{width(), height()}, radius * 2 / 3, radius * 2 / 3);

    if (look.rightEdgeIsBound) {
        const auto glow = share(*this, 0.035);
        QLinearGradient light{QPointF(width() - glow, 0), QPointF(width(), 0)};
        light.setColorAt(0, QColor{amber.red(), amber.green(), amber.blue(), 0});
        light.setColorAt(1, QColor{amber.red(), amber.green(), amber.blue(), 150});
        painter.fillRect(QRect{width() - glow, 0, glow, height()}, light);
        painter.fillRect(QRect{width() - 4, 0, 4, height()}, amber);
    }
}

void DeskWindow::paintNote(QPainter& painter) const {
    const auto margin = share(*this, 0.09);
    const QRect area = rect().adjusted(margin, margin, -margin, -margin);
    painter.setPen(Qt::white);
    painter.setFont(fontOf(share(*this, 0.062), QFont::DemiBold));
    painter.drawText(area, Qt::AlignLeft | Qt::AlignTop, look.title);
    painter.setFont(fontOf(share(*this, 0.028)));
    painter.setPen(QColor{255, 255, 255, 170});
    painter.drawText(area.adjusted(0, share(*this, 0.088), 0, 0), Qt::AlignLeft | Qt::AlignTop,
                     look.subtitle);

    const QRect note = area.adjusted(0, share(*this, 0.18), 0, 0);
    const auto corner = share(*this, 0.02);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor{0, 0, 0, 50});
    painter.drawRoundedRect(note.translated(0, corner / 3), corner, corner);
    painter.setBrush(QColor{0xFB, 0xFA, 0xF6});
    painter.drawRoundedRect(note, corner, corner);

    const auto inset = share(*this, 0.045);
    const QRect page = note.adjusted(inset, inset, -inset, -inset);
    painter.setFont(fontOf(share(*this, 0.058)));
    if (typed.isEmpty()) {
        painter.setPen(QColor{0, 0, 0, 70});
        painter.drawText(page, Qt::AlignLeft | Qt::AlignTop, tr("nothing typed here"));
    } else {
        painter.setPen(QColor{0x22, 0x26, 0x2B});
        painter.drawText(page, Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap,
                         typed + QStringLiteral("\u258F"));
    }

    QStringList facts;
    if (pointer) facts += tr("pointer %1, %2").arg(pointer->x()).arg(pointer->y());
    if (clickCount > 0) facts += clickCount == 1 ? tr("1 click") : tr("%1 clicks").arg(clickCount);
    if (scrolled != 0) facts += tr("scrolled %1").arg(scrolled);
    painter.setFont(fontOf(share(*this, 0.024)));
    painter.setPen(QColor{0, 0, 0, 120});
    painter.drawText(page, Qt::AlignRight | Qt::AlignBottom, facts.join(QStringLiteral("   ·   ")));
}

void DeskWindow::paintPointer(QPainter& painter) const {
    const double radius = share(*this, 0.014);
    painter.setBrush(Qt::NoBrush);
    for (const auto& click : clicks) {
        painter.setPen(QPen{amber, radius / 5});
        painter.drawEllipse(QPointF{click}, radius * 1.6, radius * 1.6);
        painter.setPen(QPen{QColor{amber.red(), amber.green(), amber.blue(), 110}, radius / 6});
        painter.drawEllipse(QPointF{click}, radius * 2.5, radius * 2.5);
    }
    if (!pointer) return;
    QPainterPath arrow;
    arrow.addPolygon(QPolygonF{{QPointF{0, 0},
                                {0, 1.0},
                                {0.24, 0.78},
                                {0.42, 1.16},
                                {0.57, 1.09},
                                {0.40, 0.72},
                                {0.71, 0.70},
                                {0, 0}}});
    const double size = share(*this, 0.045);
    painter.save();
    painter.translate(*pointer);
    painter.scale(size, size);
    painter.setPen(QPen{Qt::white, 0.09, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin});
    painter.setBrush(QColor{0x15, 0x18, 0x1C});
    painter.drawPath(arrow);
    painter.restore();
}

} // namespace quenthisar::demo
