// SPDX-License-Identifier: MIT
#include "UI/Qt/SpeedSlider.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QMouseEvent>
#include <QStyleOptionSlider>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace quenthisar {

namespace {

/// Of the slider's own positions. Finer than any screen, and each is a short decimal.
constexpr double positionsPerUnit = 1000;
constexpr int keySpan = 50, pageSpan = 250;

/// Tells the speed, where the toolkit's own would tell positions.
class AccessibleSpeed final : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit AccessibleSpeed(SpeedSlider* slider)
        : QAccessibleWidget(slider, QAccessible::Slider), slider(*slider) {}

    void* interface_cast(QAccessible::InterfaceType type) override {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QVariant currentValue() const override { return slider.shown(); }
    void setCurrentValue(const QVariant& value) override { slider.moveTo(value.toDouble()); }
    QVariant minimumValue() const override { return slider.minimum() / positionsPerUnit; }
    QVariant maximumValue() const override { return slider.maximum() / positionsPerUnit; }
    QVariant minimumStepSize() const override { return keySpan / positionsPerUnit; }

private:
    SpeedSlider& slider;
};

QAccessibleInterface* makeAccessible(const QString& className, QObject* object) {
    if (className != QLatin1String(SpeedSlider::staticMetaObject.className())) return nullptr;
    return new AccessibleSpeed(static_cast<SpeedSlider*>(object));
}

QMouseEvent shifted(const QMouseEvent& event, QPoint by) {
    return {event.type(),
            event.position() + by,
            event.scenePosition() + by,
            event.globalPosition() + by,
            event.button(),
            event.buttons(),
            event.modifiers(),
            event.pointingDevice()};
}

} // namespace

SpeedSlider::SpeedSlider(Binding<double> speed, Range range, QWidget* parent)
    : QSlider(Qt::Horizontal, parent), binding(std::move(speed)) {
    QAccessible::installFactory(makeAccessible); // once, however often
    setRange(static_cast<int>(std::lround(range.slowest * positionsPerUnit)),
             static_cast<int>(std::lround(range.fastest * positionsPerUnit)));
    setSingleStep(keySpan);
    setPageStep(pageSpan);
    setFocusPolicy(Qt::StrongFocus);
    connect(this, &QSlider::valueChanged, this, &SpeedSlider::write);
    connect(this, &QSlider::actionTriggered, this, [this](int action) {
        if (action == SliderToMinimum || action == SliderToMaximum) put(sliderPosition());
    });
    refresh();
}

void SpeedSlider::refresh() {
    const double stored = binding.get() * positionsPerUnit;
    const double lowest = minimum(), highest = maximum();
    // What is no number shows as the lowest.
    const auto position = stored >= lowest ? std::min(stored, highest) : lowest;
    isShowing = true;
    setValue(static_cast<int>(std::lround(position)));
    isShowing = false;
}

double SpeedSlider::shown() const {
    return value() / positionsPerUnit;
}

void SpeedSlider::moveTo(double speed) {
    const double position = speed * positionsPerUnit;
    if (position >= minimum() && position <= maximum())
        put(static_cast<int>(std::lround(position)));
}

/// The toolkit tells of no change where the handle is there: what is stored may lie beyond.
void SpeedSlider::put(int position) {
    if (position == value())
        write(position);
    else
        setValue(position);
}

void SpeedSlider::write(int position) {
    const double speed = position / positionsPerUnit;
    if (!isShowing && binding.get() != speed) binding.set(speed);
}

/// The toolkit would bring the middle of the handle to the pointer.
void SpeedSlider::mousePressEvent(QMouseEvent* event) {
    QStyleOptionSlider option;
    initStyleOption(&option);
    const auto handle =
        style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    const auto place = event->position().toPoint();
    const bool holds = event->button() == Qt::LeftButton && handle.contains(place);
    grip = holds ? handle.center() - place : QPoint();
    const int before = value();
    isShowing = holds;
    auto press = shifted(*event, grip);
    QSlider::mousePressEvent(&press);
    event->setAccepted(press.isAccepted());
    if (holds) setValue(before);
    isShowing = false;
}

void SpeedSlider::mouseMoveEvent(QMouseEvent* event) {
    auto moved = shifted(*event, grip);
    QSlider::mouseMoveEvent(&moved);
    event->setAccepted(moved.isAccepted());
}

/// The wheel belongs to the page, which would stop at each slider.
void SpeedSlider::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

} // namespace quenthisar
