#pragma once
// A plugin module built for another application's interface. The reference host must read its metadata,
// refuse it and never create its object; the object announces its creation so that a test can tell.

#include <QObject>
#include <QtPlugin>

class FakeForeignPlugin : public QObject
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.example.NotAKolPlugin" FILE "FakeForeignPlugin.json")
public:
    static constexpr const char* kCreatedMessage = "FakeForeignPlugin object created";

    explicit FakeForeignPlugin(QObject* parent = nullptr);
};
