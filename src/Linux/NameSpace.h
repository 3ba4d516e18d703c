// SPDX-License-Identifier: MIT
#pragma once

#include "Support/Uuid.h"

#include <QByteArray>
#include <QUuid>

#include <algorithm>

namespace quenthisar {

/// The name space of every version 5 identifier that this system makes.
inline QUuid quenthisarNameSpace() {
    constexpr QUuid dns{0x6ba7b810, 0x9dad, 0x11d1, 0x80, 0xb4, 0x00, 0xc0, 0x4f, 0xd4, 0x30, 0xc8};
    static const auto own = QUuid::createUuidV5(dns, QByteArrayLiteral("com.vornack.quenthisar"));
    return own;
}

/// The version 5 identifier of `name` in the name space above: the same bytes, the same identifier.
inline Uuid version5(const QByteArray& name) {
    const auto bytes = QUuid::createUuidV5(quenthisarNameSpace(), name).toRfc4122();
    Uuid result;
    std::copy_n(bytes.begin(), result.bytes.size(), result.bytes.begin());
    return result;
}

} // namespace quenthisar
