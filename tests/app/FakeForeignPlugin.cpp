#include "FakeForeignPlugin.h"

#include <cstdio>

FakeForeignPlugin::FakeForeignPlugin(QObject* parent)
    : QObject(parent)
{
    std::puts(kCreatedMessage);
    std::fflush(stdout);
}
