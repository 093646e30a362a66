#include "App/PrivacyPolicy.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QUrl>

namespace kestrove {

void openPrivacyPolicy(Application& application) {
    const QDir program(QCoreApplication::applicationDirPath());
    for (const auto* const folder : {"../share/kestrove", "share/kestrove"}) {
        const QFileInfo page(program.filePath(QString::fromLatin1(folder)),
                             QStringLiteral("privacy-policy.html"));
        if (page.isFile()) {
            application.openURL(
                QUrl::fromLocalFile(page.canonicalFilePath()).toString().toStdString());
            return;
        }
    }
}

} // namespace kestrove
