// SPDX-License-Identifier: MIT
#pragma once

#include "UI/ConfigView.h"

#include <QTabWidget>

namespace quenthisar {

/// The four tabs of the configuration window.
class ConfigTabs final : public QTabWidget {
public:
    explicit ConfigTabs(const ConfigView& view, QWidget* parent = nullptr);
};

} // namespace quenthisar
