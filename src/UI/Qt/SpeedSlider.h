// SPDX-License-Identifier: MIT
#pragma once

#include "UI/Binding.h"

#include <QSlider>

namespace quenthisar {

/// Sets a speed without steps. What is stored beyond its ends it shows at the end, and writes only
/// what somebody moves it to.
class SpeedSlider final : public QSlider {
    Q_OBJECT

public:
    struct Range {
        double slowest, fastest;
    };

    SpeedSlider(Binding<double> speed, Range range, QWidget* parent = nullptr);

    /// Shows what is stored.
    void refresh();

    // In the unit of the speed, for screen readers.
    double shown() const;
    void moveTo(double speed);

protected:
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void put(int position);
    void write(int position);

    Binding<double> binding;
    QPoint grip; // from the pointer to the middle of the handle that it holds
    bool isShowing = false;
};

} // namespace quenthisar
