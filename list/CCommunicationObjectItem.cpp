#include "CCommunicationObjectItem.h"

CCommunicationObjectItem::CCommunicationObjectItem(QObject* parent)
    : QObject(parent)
{}

CCommunicationObjectItem::~CCommunicationObjectItem() = default;
