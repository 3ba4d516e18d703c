// SPDX-License-Identifier: MIT
#pragma once

#include <QAbstractNativeEventFilter>
#include <QColor>
#include <QList>
#include <QPoint>
#include <QString>
#include <QWidget>

#include <functional>
#include <optional>
#include <xcb/xcb.h>

namespace quenthisar::demo {

/// A window that stands for a computer's whole desktop: it shows what was typed into it and where
/// the pointer is and was clicked, and tells of each event that a focused client gets.
class DeskWindow : public QWidget, QAbstractNativeEventFilter {
public:
    struct Look {
        QString title;
        QString subtitle;
        QColor dark, light; // the background's ends
        bool rightEdgeIsBound = false;
    };
    /// One event as one line; demo/DeskLines.h reads them back.
    using Witness = std::function<void(const QString&)>;

    DeskWindow(Look look, Witness witness);
    ~DeskWindow() override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override { mousePressEvent(event); }
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    bool nativeEventFilter(const QByteArray& type, void* message, qintptr* result) override;
    void type(const QString& text);
    void paintBackground(QPainter& painter) const;
    void paintNote(QPainter& painter) const;
    void paintPointer(QPainter& painter) const;
    void becomeReady();

    Look look;
    Witness witness;
    const xcb_atom_t catchUpType;
    QString typed;
    int scrolled = 0; // lines, up positive
    std::optional<QPoint> pointer;
    QList<QPoint> clicks; // the latest ones
    int clickCount = 0;
    bool painted = false;
    bool ready = false;
};

} // namespace quenthisar::demo
