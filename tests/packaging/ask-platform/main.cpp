// Makes the library call each operation of the firmware's libraries.

#include <CHwTestUtilities.h>
#include <CNyxConfig.h>

#include <iostream>

int main()
{
    const QString group = QString::fromLatin1("TestFeatures/Generic");
    const QString caller = QString::fromLatin1("Unit::operation");
    const KvOrdo::CNyxConfig config;
    std::cout << KvOrdo::CHwTestUtilities::initTestOutput(group, QString::fromLatin1("Switch"), caller) << '\n';
    std::cout << KvOrdo::CHwTestUtilities::initTestString(group, QString::fromLatin1("Text"), caller).toStdString()
              << '\n';
}
