#include "SampleThread.h"

#include "CMarkdownInserter.h"

#include "CMessageItemsDocument.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPixmap>

namespace {

CIncidentAttachment attachment(const QString& id, const QString& name, quint64 size)
{
    CIncidentAttachment a;
    a.id = id;
    a.fileName = name;
    a.size = size;
    return a;
}

CIncidentCommunication message(const QString& id, bool other, const QString& author, const QColor& colour,
                               const QString& text)
{
    CIncidentCommunication m;
    m.id = id;
    m.versionKey = id;
    m.fromOtherParty = other;
    m.senderName = author;
    m.nameColor = colour;
    m.nameKnown = true;
    m.text = text;
    m.time = QDateTime(QDate(2024, 3, 14), QTime(9, 30).addSecs(id.mid(1).toInt() * 420));
    return m;
}

QPixmap demoThumbnail()
{
    QPixmap pixmap(160, 100);
    QPainter painter(&pixmap);
    QLinearGradient gradient(0, 0, 160, 100);
    gradient.setColorAt(0, QColor("#3a7bd5"));
    gradient.setColorAt(1, QColor("#00d2ff"));
    painter.fillRect(pixmap.rect(), gradient);
    painter.setPen(Qt::white);
    painter.drawText(pixmap.rect(), Qt::AlignCenter, QStringLiteral("screenshot.png"));
    return pixmap;
}

} // namespace

QList<CIncidentCommunication> SampleThread::messages()
{
    QList<CIncidentCommunication> list;
    list << message("m1", true, "Anna Support", QColor("#3a7bd5"),
                    "Hello! Thanks for reaching out. Could you try these steps:\n\n"
                    "1. Open **Settings**\n2. Choose *Network*\n3. Press `Reset`\n\n"
                    "See [our guide](https://example.com/guide) for details.");
    list << message("m2", false, "Me Myself", QColor(),
                    "I did that, here is the log and a screenshot. The error is still there:\n\n"
                    "```\nERROR 0x80070005: access denied\n```");
    list.last().attachments << attachment("a1", "network log #2.txt", 12850)
                            << attachment("a2", "screenshot.png", 245000);
    list << message("m3", true, "Ben Tech", QColor("#c0392b"),
                    "| Setting | Value |\n|---|---|\n| Proxy | off |\n| DNS | auto |\n\n"
                    "- check the cable\n- restart the router");
    list << message(
        "m4", true, "Anna Support", QColor("#3a7bd5"),
        "<p>Please install the <b>update</b> from the <a href=\"https://example.com\">portal</a>.</p>"
        "<ul><li>Version 5.2</li><li>Size 80 MB</li></ul>");
    list.last().attachments << attachment("a3", "installer.zip", 83886080)
                            << attachment("a4", "manual.pdf", 1500000);
    list << message("m5", false, "Me Myself", QColor(), "This message will fail to send.");
    list << message("m6", true, "Ben Tech", QColor("#c0392b"), "Something I said");
    list.last().deleted = true;
    list << message("m7", false, "Me Myself", QColor(), "Thanks, it works now! (fixed a typo)");
    list.last().editVersion = 2;
    return list;
}

void SampleThread::fill(CMessageItemsDocument& document)
{
    QList<CMessageItemIndex> indices;
    for (const CIncidentCommunication& m : messages())
        indices << document.appendMessage(m);
    document.setAttachProgress(QStringLiteral("a3"), 40);
    document.setContentsThumbnail(indices.at(1), QStringLiteral("a2"), demoThumbnail());
    document.setDeliveryStatus(indices.at(4), CMessageItemsDocument::DeliveryFailed);
}

QList<CIncidentCommunication> SampleThread::repeated(int count)
{
    const QList<CIncidentCommunication> base = messages();
    QList<CIncidentCommunication> list;
    for (int i = 0; i < count; ++i) {
        CIncidentCommunication m = base.at(i % base.size());
        m.id = QStringLiteral("r%1").arg(i);
        for (CIncidentAttachment& a : m.attachments)
            a.id = QStringLiteral("%1-%2").arg(m.id, a.id);
        list << m;
    }
    return list;
}

QString SampleThread::equivalentHtml(const QList<CIncidentCommunication>& messages)
{
    QString html;
    for (const CIncidentCommunication& m : messages) {
        const bool own = !m.fromOtherParty;
        html += QStringLiteral(
                    "<table align=\"%1\" cellspacing=\"0\" cellpadding=\"0\" style=\"margin-bottom:16px;"
                    "margin-left:%2px;margin-right:%3px\"><tr><td valign=\"bottom\">%4</td>"
                    "<td valign=\"top\" bgcolor=\"%5\" style=\"padding:7px 13px\">")
                    .arg(own ? "right" : "left")
                    .arg(own ? 100 : 0)
                    .arg(own ? 16 : 100)
                    .arg(own ? QString() : QStringLiteral("<img src=\"avatar\" width=\"40\" height=\"40\">"))
                    .arg(own ? "#dcf3e4" : "#ffffff");
        if (!m.senderName.isEmpty())
            html += QStringLiteral("<p style=\"margin-bottom:7px\"><b>%1</b></p>")
                        .arg(m.senderName.toHtmlEscaped());
        for (const CIncidentAttachment& a : m.attachments)
            html += QStringLiteral(
                        "<table style=\"margin-top:7px;margin-bottom:7px\"><tr><td><img src=\"icon\"></td>"
                        "<td style=\"padding-left:5px\"><a href=\"attach://%1\">%2</a><br>"
                        "<span style=\"font-size:8pt\">%3 bytes</span></td></tr></table>")
                        .arg(a.id, a.fileName.toHtmlEscaped())
                        .arg(a.size);
        QTextDocument body;
        if (CMessageItemsDocument::isHtmlBody(m.text))
            html += m.text;
        else {
            // The bubble's own Markdown reader, so that tables have the same borders and padding.
            QTextCursor cursor(&body);
            CMarkdownInserter::insert(cursor, m.text);
            const QString full = body.toHtml();
            const qsizetype open = full.indexOf(QLatin1Char('>'), full.indexOf(QLatin1String("<body"))) + 1;
            html += full.mid(open, full.lastIndexOf(QLatin1String("</body>")) - open);
        }
        html += QStringLiteral(
                    "<p align=\"right\" style=\"font-size:8pt;margin-top:7px\">%1</p></td></tr></table>")
                    .arg(m.time.toString());
    }
    return html;
}
