// Who-is-typing texts and the typist table with its expiry, as the typing view model writes them.
#include "HostTestMain.h"

#include "TypingViewModel.h"

#include <QRegularExpression>
#include <QSignalSpy>
#include <QTranslator>

namespace {

CIncidentCommunication typist(const QString& id, const QString& name = QString(),
                              const QColor& color = QColor())
{
    CIncidentCommunication communication;
    communication.senderId = id;
    communication.senderName = name;
    communication.nameKnown = !name.isEmpty();
    communication.nameColor = color;
    return communication;
}

// The line is "<p ...><span>TEXT</span>&nbsp;<span ...><img src="URL"></span></p>".
QString textPart(const QString& line)
{
    static const QRegularExpression pattern("^<p[^>]*><span>(.*)</span>&nbsp;<span");
    return pattern.match(line).captured(1);
}

const QString kAnna = QStringLiteral("<span style=\"font-weight:600; color:#3366cc;\">Anna</span>");

} // namespace

class TestTypingViewModel : public QObject
{
    Q_OBJECT

private slots:
    void textNamesTheTypists_data()
    {
        QTest::addColumn<QList<CIncidentCommunication>>("typists");
        QTest::addColumn<bool>("german");
        QTest::addColumn<QString>("expected");
        const auto anna = typist("p1", "Anna", QColor("#3366CC"));
        QTest::newRow("one known") << QList{anna} << false << kAnna + " is typing message...";
        QTest::newRow("one unknown") << QList{typist("p2")} << false << "<b>Someone</b> is typing message...";
        // The untranslated text has no argument marker and shows as it stands; a translation receives the
        // names, then the established "and some others".
        QTest::newRow("several") << QList{anna, typist("p2")} << false << "%s are typing messages";
        QTest::newRow("several, German") << QList{anna, typist("p3", "Ben", QColor("#aa2200"))} << true
                                         << "<span style=\"font-weight:600; color:#aa2200;\">Ben</span>, ";
    }

    void textNamesTheTypists()
    {
        QFETCH(QList<CIncidentCommunication>, typists);
        QFETCH(bool, german);
        QFETCH(QString, expected);
        QTranslator translator;
        if (german) {
            QVERIFY(translator.load("newsReader_de",
                                    QCoreApplication::applicationDirPath() + "/../translations"));
            QCoreApplication::installTranslator(&translator);
        } else if (typists.size() > 1) {
            QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        }
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        for (const CIncidentCommunication& communication : typists)
            model.setTyping(communication, true);
        QCoreApplication::removeTranslator(&translator);
        QCOMPARE(spy.size(), typists.size());
        const QString text = textPart(spy.last().at(0).toString());
        QVERIFY2(german ? text.contains(expected) && text.contains(kAnna + ", ") : text == expected,
                 qPrintable(text));
    }

    void typistsExpireSixSecondsAfterTheirLastEvent()
    {
        TypingViewModel model;
        QSignalSpy spy(&model, &TypingViewModel::typingDataChanged);
        QTest::ignoreMessage(QtWarningMsg, QRegularExpression("QString::arg: Argument missing"));
        model.setTyping(typist("early", "Anna", QColor("#3366cc")), true);
        model.setTyping(typist("late"), true);
        // A repeated event only prolongs: no new line, the first record stays.
        model.setTyping(typist("early", "Anna renamed"), true);
        QCOMPARE(spy.size(), 2);
        QTest::qWait(3000);
        model.setTyping(typist("early", "Anna renamed"), true);
        model.setTyping(typist("nobody"), false);
        QCOMPARE(model.typistCount(), 2);
        QTRY_COMPARE_WITH_TIMEOUT(model.typistCount(), 1, 4500);
        QCOMPARE(textPart(spy.last().at(0).toString()), kAnna + " is typing message...");
        model.setTyping(typist("early"), false);
        QCOMPARE(spy.last().at(0).toString(), QString());
        QVERIFY(model.currentFrame().isNull());
    }
};

HOST_TEST_MAIN(TestTypingViewModel)
#include "tst_typingviewmodel.moc"
