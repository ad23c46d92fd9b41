#pragma once
// Builds the demonstration thread that the render tool draws and the benchmark repeats: own and
// other-party messages, Markdown and HTML bodies, attachment tiles in their different states.

#include "CIncidentCommunication.h"

#include <QList>

class CMessageItemsDocument;

class SampleThread
{
public:
    // The records of the demonstration, in order.
    static QList<CIncidentCommunication> messages();
    // Lays them into `document` and puts the tiles and delivery states into their demonstrated states.
    static void fill(CMessageItemsDocument& document);
    // `count` messages cycling through the demonstration's bodies, each with a unique id.
    static QList<CIncidentCommunication> repeated(int count);
    // The HTML that the toolkit's stock layout is given for the same content.
    static QString equivalentHtml(const QList<CIncidentCommunication>& messages);
};
