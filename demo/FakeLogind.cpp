// SPDX-License-Identifier: MIT
#include "FakeLogind.h"

#include <QCoreApplication>
#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QSet>

#include <stdexcept>
#include <utility>

namespace quenthisar::demo {

/// The name of a session, and its path.
struct SessionReference {
    QString name;
    QDBusObjectPath path;
};

QDBusArgument& operator<<(QDBusArgument& out, const SessionReference& reference) {
    out.beginStructure();
    out << reference.name << reference.path;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, SessionReference& reference) {
    in.beginStructure();
    in >> reference.name >> reference.path;
    in.endStructure();
    return in;
}

} // namespace quenthisar::demo

Q_DECLARE_METATYPE(quenthisar::demo::SessionReference)

namespace quenthisar::demo {

namespace {

const QString name = QStringLiteral("org.freedesktop.login1");
const QString root = QStringLiteral("/org/freedesktop/login1");
const QString managerInterface = name + QStringLiteral(".Manager");
const QString sessionInterface = name + QStringLiteral(".Session");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

/// A thread's loop runs only where there is an application.
void provideApplication() {
    if (QCoreApplication::instance()) return;
    static int argumentCount = 1;
    static char program[] = "fake-logind";
    static char* arguments[] = {program, nullptr};
    static const QCoreApplication application{argumentCount, arguments};
}

QString pathOf(const QString& session) {
    return root + QStringLiteral("/session/_3") + session;
}

} // namespace

class FakeLogind::Server final : public QDBusVirtualObject {
public:
    Server(const QString& address, Options given) : options(std::move(given)) {
        static int number = 0;
        connectionName = QStringLiteral("fake-logind-%1").arg(++number);
        auto bus = QDBusConnection::connectToBus(address, connectionName);
        if (options.lockedHint) locked = {options.processSession, options.displaySession};
        if (!bus.registerVirtualObject(root, this, QDBusConnection::SubPath) ||
            !bus.registerService(name))
            throw std::runtime_error("no fake logind: " + bus.lastError().message().toStdString());
    }
    ~Server() override { QDBusConnection::disconnectFromBus(connectionName); }
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    QString introspect(const QString& /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& bus) override {
        const auto member = call.member();
        const auto arguments = call.arguments();
        QVariant result;
        if (member == QStringLiteral("GetSessionByPID"))
            result = pathIfAny(options.processSession);
        else if (member == QStringLiteral("GetSession"))
            result = pathIfAny(arguments.value(0).toString());
        else if (member == QStringLiteral("GetAll"))
            result = propertiesOf(call.path());
        else if (member == QStringLiteral("Get"))
            result = property(arguments.value(1).toString());
        const auto answer = result.isValid()
                                ? call.createReply(result)
                                : call.createErrorReply(QStringLiteral("org.freedesktop.login1.No"),
                                                        QStringLiteral("There is none."));
        return bus.send(answer);
    }

    void setLockedHint(bool isLocked, const QString& session) {
        if (isLocked)
            locked += session;
        else
            locked -= session;
        emitSignal(pathOf(session), propertiesInterface, QStringLiteral("PropertiesChanged"),
                   {sessionInterface, QVariantMap{{QStringLiteral("LockedHint"), isLocked}},
                    QStringList{}});
    }

    void emitSignal(const QString& path, const QString& interface, const QString& member,
                    const QVariantList& arguments) const {
        auto signal = QDBusMessage::createSignal(path, interface, member);
        signal.setArguments(arguments);
        QDBusConnection{connectionName}.send(signal);
    }

    Options options;

private:
    bool isThere(const QString& session) const {
        return !session.isEmpty() &&
               (session == options.processSession || session == options.displaySession);
    }

    QVariant pathIfAny(const QString& session) const {
        if (!isThere(session)) return {};
        return QVariant::fromValue(QDBusObjectPath(pathOf(session)));
    }

    QVariant propertiesOf(const QString& path) const {
        for (const auto& session : {options.processSession, options.displaySession}) {
            if (!isThere(session) || path != pathOf(session)) continue;
            const auto type = session == options.processSession ? options.processSessionType
                                                                : QStringLiteral("x11");
            return QVariantMap{{QStringLiteral("Id"), session},
                               {QStringLiteral("Type"), type},
                               {QStringLiteral("LockedHint"), locked.contains(session)}};
        }
        return {};
    }

    QVariant property(const QString& wanted) const {
        QVariant value;
        if (wanted == QStringLiteral("PreparingForSleep"))
            value = options.preparesForSleep;
        else if (wanted == QStringLiteral("Display"))
            value = QVariant::fromValue(SessionReference{
                options.displaySession, QDBusObjectPath(options.displaySession.isEmpty()
                                                            ? QStringLiteral("/")
                                                            : pathOf(options.displaySession))});
        return value.isValid() ? QVariant::fromValue(QDBusVariant(value)) : QVariant{};
    }

    QString connectionName;
    QSet<QString> locked; // sessions
};

FakeLogind::FakeLogind(const QString& busAddress) : FakeLogind(busAddress, Options{}) {}

FakeLogind::FakeLogind(const QString& busAddress, Options options) {
    provideApplication();
    qDBusRegisterMetaType<SessionReference>();
    server = std::make_unique<Server>(busAddress, std::move(options));
    server->moveToThread(&thread);
    thread.start();
}

FakeLogind::~FakeLogind() {
    thread.quit();
    thread.wait();
}

template <class Action>
void FakeLogind::serve(Action action) {
    QMetaObject::invokeMethod(server.get(), std::move(action), Qt::BlockingQueuedConnection);
}

void FakeLogind::setLockedHint(bool isLocked) {
    const auto& options = server->options;
    setLockedHint(isLocked, options.processSession);
    if (options.displaySession != options.processSession)
        setLockedHint(isLocked, options.displaySession);
}

void FakeLogind::setLockedHint(bool isLocked, const QString& session) {
    serve([this, isLocked, session] { server->setLockedHint(isLocked, session); });
}

void FakeLogind::emitLock(const QString& session) {
    serve([this, session] {
        server->emitSignal(pathOf(session), sessionInterface, QStringLiteral("Lock"), {});
    });
}

void FakeLogind::emitUnlock(const QString& session) {
    serve([this, session] {
        server->emitSignal(pathOf(session), sessionInterface, QStringLiteral("Unlock"), {});
    });
}

void FakeLogind::emitPrepareForSleep(bool isNear) {
    serve([this, isNear] {
        server->options.preparesForSleep = isNear;
        server->emitSignal(root, managerInterface, QStringLiteral("PrepareForSleep"), {isNear});
    });
}

} // namespace quenthisar::demo
