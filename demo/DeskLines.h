// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QString>
#include <QStringList>

/// The lines by which a desk tells of its events:
///
///     window 4194312                                            (as the server numbers it)
///     ready
///     focus in | focus out
///     key press 38 "a" | key repeat 38 "a" | key release 38     (X key codes)
///     button press left 100,200 | button release left 100,200   (left, middle, right or other)
///     motion 100,200
///     wheel 0,-120                                              (eighths of a degree, up positive)
///     caught up 7                                               (see Desk::catchUp)
namespace quenthisar::demo::DeskLines {

QString keyPress(quint32 keyCode, const QString& text, bool isRepeat);
QString keyRelease(quint32 keyCode);
QString button(bool isPress, Qt::MouseButton button, QPoint place);
QString motion(QPoint place);
QString wheel(QPoint angle);
QString caughtUp(quint32 number);

/// The type of the client message that asks for the latter, with the number as its first word.
inline constexpr const char* catchUpMessage = "_QUENTHISAR_DEMO_CATCH_UP";

/// Whether the line tells of a key, a button, motion or the wheel.
bool isInput(const QString& line);
/// The text that the lines' key presses and repeats typed, a Return as "\n".
QString typedText(const QStringList& lines);

} // namespace quenthisar::demo::DeskLines
