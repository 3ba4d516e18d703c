// SPDX-License-Identifier: MIT
#include "FrameBuffer.h"

#include <QtEndian>

#include <stdexcept>

namespace quenthisar::demo {

namespace {

// The file is a window dump in X's own format: a header of big-endian 32-bit words, a colour map,
// the pixels.
constexpr int headerSize = 0, bitsPerPixel = 11, bytesPerLine = 12, colours = 19, headerWords = 25;
constexpr std::uint32_t colourSize = 12;

} // namespace

FrameBuffer::FrameBuffer(const QString& folder) : file(folder + QStringLiteral("/Xvfb_screen0")) {
    if (file.open(QIODevice::ReadOnly) && file.size() > qint64{headerWords} * 4)
        bytes = file.map(0, file.size());
    if (bytes == nullptr) throw std::runtime_error("no frame buffer in " + folder.toStdString());
    const auto word = [this](int index) {
        return qFromBigEndian<quint32>(bytes + std::ptrdiff_t{index} * 4);
    };
    if (word(bitsPerPixel) != 32) throw std::runtime_error("the frame buffer's format is unknown");
    firstPixel = word(headerSize) + word(colours) * colourSize;
    stride = word(bytesPerLine);
}

std::uint32_t FrameBuffer::colour(QPoint place) const {
    const auto offset = firstPixel + static_cast<std::uint32_t>(place.y()) * stride +
                        static_cast<std::uint32_t>(place.x()) * 4;
    return qFromLittleEndian<quint32>(bytes + offset) & 0xFFFFFF;
}

bool FrameBuffer::showsCursor(const XClient& client) const {
    const auto pointer = client.pointer();
    const auto picture = client.picture();
    if (!pointer || picture.isNull()) return false;
    // The picture is the screen without the cursor, which the server puts back once it is idle.
    static_cast<void>(client.pointer());
    constexpr int reach = 24, enough = 10;
    const auto area =
        QRect{*pointer - QPoint{reach, reach}, *pointer + QPoint{reach, reach}} & picture.rect();
    int different = 0;
    for (int y = area.top(); y <= area.bottom(); ++y)
        for (int x = area.left(); x <= area.right(); ++x)
            different += colour({x, y}) != (picture.pixel(x, y) & 0xFFFFFF) ? 1 : 0;
    return different >= enough;
}

} // namespace quenthisar::demo
