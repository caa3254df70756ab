// A user who cannot write the peers folder: the Connect tab offers the SIM's profiles at once, and its
// Connect button says why a password is asked before pkexec (a stand-in here) sets up the service.
#include <QComboBox>
#include <QFile>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

#include <fstream>
#include <unistd.h>

#include "Connect/ConnectPlugin.h"
#include "Connector/ConnectController.h"
#include "DialupReadiness.h"
#include "GuiTestSupport.h"

using namespace std::chrono_literals;

namespace {

TEST(ConnectPrivilegeGui, ProfilesFirstThenTheExplainedPasswordStep) {
    if (getuid() == 0 ||
        DialupReadiness::dialBlocker(DialupReadiness::check(DialupReadiness::Facts::fromSystem())))
        GTEST_SKIP() << "runs as a user of group dip (CTest's gui_connect_as_user does so)";
    QTemporaryDir stage;
    // pkexec's stand-in gives the rights the administrator's password would give, and notes its call.
    const QString pkexec = stage.path() + "/pkexec";
    std::ofstream(pkexec.toStdString())
        << "#!/bin/sh\necho \"$@\" >> \"$0.log\"\nchmod u+w \"$DIALTONE_PEERS_DIR\"\nexec \"$@\"\n";
    QFile::setPermissions(pkexec, QFile::ReadOwner | QFile::ExeOwner);
    setenv("DIALTONE_PKEXEC", pkexec.toLocal8Bit().constData(), 1);
    GuiWorld world;
    ASSERT_TRUE(world.started());
    QFile::setPermissions(world.pppDir() + "/peers", QFile::ReadOwner | QFile::ExeOwner);
    ASSERT_TRUE(world.waitForState(ModemLink::State::Ready));
    auto* tab = world.show<ConnectPlugin>("connect");
    auto* button = tab->findChild<QPushButton*>("connectButton");
    auto* profiles = tab->findChild<QComboBox*>("profiles");
    ASSERT_TRUE(button && profiles);

    ASSERT_TRUE(waitForGui([&] { return button->isEnabled() && profiles->count() > 0; }, 20s));
    EXPECT_TRUE(tab->controller()->waitingForPrivilegedStep());
    EXPECT_FALSE(QFile::exists(pkexec + ".log")) << "nothing asked before the user connects";

    QString explanation;
    QTimer::singleShot(200ms, [&] {
        auto* box = tab->findChild<QMessageBox*>("privilegeExplanation");
        if (!box)
            return;
        explanation = box->text();
        for (QAbstractButton* choice : box->buttons())
            if (box->buttonRole(choice) == QMessageBox::AcceptRole)
                choice->click();
    });
    button->click();
    EXPECT_TRUE(explanation.contains("administrator's password once")) << explanation.toStdString();
    ASSERT_TRUE(
        waitForGui([&] { return tab->controller()->connectState() == ConnectController::kConnecting; }, 20s));
    EXPECT_NE(std::ifstream((pkexec + ".log").toStdString()).peek(), EOF) << "pkexec ran";
    EXPECT_TRUE(QFile::exists(world.pppDir() + "/peers/VELMODEM1"));
    unsetenv("DIALTONE_PKEXEC");
}

} // namespace
