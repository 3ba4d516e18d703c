// SPDX-License-Identifier: MIT
#include "Linux/BluezPicture.h"

namespace quenthisar {

void BluezPicture::clear() {
    adapterPicture.clear();
    devicePicture.clear();
}

void BluezPicture::read(const BluezObjects& objects) {
    for (auto object = objects.begin(); object != objects.end(); ++object)
        add(object.key().path(), object.value());
}

void BluezPicture::add(const QString& path, const BluezInterfaces& interfaces) {
    if (const auto it = interfaces.find(Bluez::adapter); it != interfaces.end())
        adapterPicture[path] = it.value();
    if (const auto it = interfaces.find(Bluez::device); it != interfaces.end())
        devicePicture[path] = it.value();
}

void BluezPicture::added(const QString& path, const BluezInterfaces& interfaces) {
    add(path, interfaces);
    if (interfaces.contains(Bluez::adapter)) follower.adaptersChanged();
    if (interfaces.contains(Bluez::device)) follower.deviceAppeared(path);
}

void BluezPicture::removed(const QString& path, const QStringList& interfaces) {
    if (interfaces.contains(Bluez::device) && devicePicture.remove(path) > 0)
        follower.deviceVanished(path);
    if (interfaces.contains(Bluez::adapter) && adapterPicture.remove(path) > 0)
        follower.adaptersChanged();
}

void BluezPicture::changed(const QString& path, const QString& interface,
                           const QVariantMap& properties, const QStringList& gone) {
    const bool isDevice = interface == Bluez::device;
    auto& picture = isDevice ? devicePicture : adapterPicture;
    const auto object = picture.find(path);
    if (object == picture.end()) return;

    object->insert(properties);
    for (const auto& name : gone) object->remove(name);
    if (isDevice)
        follower.deviceChanged(path, properties);
    else
        follower.adaptersChanged();
}

} // namespace quenthisar
