#include <QApplication>
#include <QMainWindow>

int main(int argc, char *argv[])
{
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Quillfern"));
    QMainWindow window;
    window.setWindowTitle(QStringLiteral("Quillfern"));
    window.setMinimumSize(960, 600);
    window.show();
    return QApplication::exec();
}
