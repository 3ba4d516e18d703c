// SPDX-License-Identifier: MIT
#include "UI/Qt/FontLookup.h"

#include <QFontMetrics>
#include <QGuiApplication>

namespace quenthisar {

namespace {

/// A font that shares nothing with those of the main thread.
void lookUp(const QStringList& families) {
    const QFont font(families);
    QFontMetrics(font).horizontalAdvance(QLatin1Char('x'));
}

} // namespace

FontLookup::FontLookup()
    : thread(
          QThread::create([families = QGuiApplication::font().families()] { lookUp(families); })) {
    thread->start();
}

FontLookup::~FontLookup() {
    thread->wait();
}

} // namespace quenthisar
