#include "catalog/Database.h"

#include <QApplication>

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    Database::instance();
    return 0;
}
