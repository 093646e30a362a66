#include "Platform/Qt/QtApplication.h"

#include "Platform/Qt/QtMainLoop.h"
#include "Tests/Support/QtSpin.h"

#include <QDesktopServices>
#include <QEventLoop>
#include <QGuiApplication>
#include <QUrl>
#include <QWindow>

#include <gtest/gtest.h>

#include <vector>

namespace kestrove {
namespace {

class QtApplicationTest : public testing::Test {
protected:
    QtMainLoop loop;
    QtApplication application{loop, "an.example.Application"};
};

// Qt's platform without a display never takes the focus away again, so that the changes are told
// here by Qt's own signal.
void changeState(Qt::ApplicationState state) {
    Q_EMIT qGuiApp->applicationStateChanged(state);
}

TEST_F(QtApplicationTest, TellsThatItBecameActiveAfterTheCallThatCausedIt) {
    int times = 0;
    const auto subscription = application.onBecameActive([&] { ++times; });
    changeState(Qt::ApplicationActive);
    EXPECT_EQ(times, 0);
    EXPECT_TRUE(spinUntil([&] { return times == 1; }));
    changeState(Qt::ApplicationInactive);
    changeState(Qt::ApplicationActive);
    EXPECT_TRUE(spinUntil([&] { return times == 2; }));
}

TEST_F(QtApplicationTest, TellsNobodyWhoHasUnsubscribed) {
    auto subscription = application.onBecameActive([] { ADD_FAILURE(); });
    int times = 0;
    const auto other = application.onBecameActive([&] { ++times; });
    changeState(Qt::ApplicationActive);
    subscription.cancel();
    EXPECT_TRUE(spinUntil([&] { return times == 1; }));
}

TEST_F(QtApplicationTest, TellsNobodyOnceItHasGone) {
    Subscription subscription;
    {
        QtApplication shortLived(loop, {});
        subscription = shortLived.onBecameActive([] { ADD_FAILURE(); });
        changeState(Qt::ApplicationActive);
    }
    changeState(Qt::ApplicationActive);
    bool isOver = false;
    loop.post([&] { isOver = true; });
    EXPECT_TRUE(spinUntil([&] { return isOver; }));
}

TEST_F(QtApplicationTest, IsActiveWhileAWindowOfItsOwnHasTheFocus) {
    {
        QWindow window;
        window.show();
        application.activateIgnoringOtherApps();
        EXPECT_TRUE(spinUntil([&] { return QGuiApplication::focusWindow() == &window; }));
        EXPECT_TRUE(application.isActive());
    }
    EXPECT_FALSE(application.isActive());
}

TEST_F(QtApplicationTest, BringsOnlyAVisibleWindowToTheFront) {
    std::vector<QWindow*> brought;
    QtApplication other(loop, {}, [&](QWindow& window) { brought.push_back(&window); });
    other.activateIgnoringOtherApps();
    EXPECT_TRUE(brought.empty());
    QWindow hidden;
    QWindow shown;
    shown.show();
    other.activateIgnoringOtherApps();
    EXPECT_EQ(brought, std::vector<QWindow*>{&shown});
}

TEST_F(QtApplicationTest, EndsTheEventLoopAfterTheCallThatAsksForIt) {
    bool returned = false;
    loop.post([&] {
        application.quit();
        returned = true;
    });
    // The application's own loop: after an exit from any other, no loop of the thread runs again.
    EXPECT_EQ(QCoreApplication::exec(), 0);
    EXPECT_TRUE(returned);
}

class UrlHandler : public QObject {
    Q_OBJECT
public:
    std::vector<QString> opened;
public Q_SLOTS:
    void open(const QUrl& url) { opened.push_back(url.toString()); }
};

TEST_F(QtApplicationTest, OpensUrlsAndSaysWhetherSomebodyTookThem) {
    UrlHandler handler;
    QDesktopServices::setUrlHandler("kestrovetest", &handler, "open");
    EXPECT_TRUE(application.openURL("kestrovetest:page?a=1"));
    QDesktopServices::unsetUrlHandler("kestrovetest");
    EXPECT_EQ(handler.opened, std::vector<QString>{"kestrovetest:page?a=1"});
    EXPECT_FALSE(application.openURL("not a url"));
}

TEST_F(QtApplicationTest, RemembersItsNameAndItsPolicy) {
    EXPECT_EQ(application.bundleIdentifier(), "an.example.Application");
    EXPECT_EQ(application.activationPolicy(), ActivationPolicy::regular);
    application.setActivationPolicy(ActivationPolicy::accessory);
    EXPECT_EQ(application.activationPolicy(), ActivationPolicy::accessory);
}

} // namespace
} // namespace kestrove

#include "QtApplicationTest.moc"
