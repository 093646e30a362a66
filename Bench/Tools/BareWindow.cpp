// The least that a program of this toolkit with a window can be: what any of them needs, to tell it
// from what ours adds. Its window has the size of the arguments and a line of text.

#include <QApplication>
#include <QLabel>

#include <cstdio>

int main(int argumentCount, char** arguments) {
    qputenv("QT_QPA_PLATFORM", "xcb");
    const QApplication application(argumentCount, arguments);
    const auto sizes = QApplication::arguments();
    if (sizes.size() != 3) {
        std::fputs("usage: kestrove-bench-barewindow WIDTH HEIGHT\n", stderr);
        return 2;
    }
    QLabel label(QStringLiteral("画面を共有していません"));
    label.setWindowTitle(QStringLiteral("bare window"));
    label.resize(sizes[1].toInt(), sizes[2].toInt());
    label.show();
    return QApplication::exec();
}
