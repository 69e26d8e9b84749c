// On every form Alt and an access key act on that control; every focusable control has an accessible name.

#include <QtTest>

#include "app/form_registry.h"
#include "app/frmMain.h"
#include "support/form_script.h"
#include "support/test_services.h"

using namespace kyt;

namespace {

// The access key of a caption: the character behind a single "&".
QChar access_key(const QString& caption) {
    for (int i = 0; i + 1 < caption.size(); ++i) {
        if (caption[i] != '&') continue;
        if (caption[i + 1] != '&') return caption[i + 1].toUpper();
        ++i;
    }
    return {};
}

Qt::Key key_of(QChar c) { return Qt::Key(c.unicode()); }

// The form, loaded; the trumpet graph's settings, which open first, confirmed.
QWidget* load(const QString& form) {
    if (form == "frmMain") return forms::get<frmMain>();
    if (form == "frmTrumpetGraph")
        test::when_shown("frmTrumpSet", [](QWidget* d) { d->findChild<QAbstractButton*>("CmdOK")->click(); });
    return forms::get(form);
}

}  // namespace

class tst_accelerators : public QObject {
    Q_OBJECT
private slots:
    void initTestCase() { register_all_forms(); }

    void every_form_data() {
        QTest::addColumn<QString>("form");
        QTest::addColumn<int>("keys");  // how many access keys the form shows, menu entries too
        const std::pair<const char*, int> forms_and_keys[] = {
            {"frmMain", 11}, {"frmChangePort", 2}, {"frmTestPort", 2}, {"frmSysAd", 0}, {"frmPassWord", 1},
            {"frmChgPassword", 2}, {"frmHeader", 0}, {"frmDownload", 2}, {"frmReports", 14}, {"frmInProgress", 1},
            {"frmFileExists", 3}, {"frmRTGraph", 0}, {"frmOTGraph", 0}, {"frmSummary", 1}, {"frmGraph", 12},
            {"frmSetRate", 2}, {"frmTrumpSet", 0}, {"frmKYTHelp", 1}, {"frmKYTGHelp", 0}, {"frmKYTOverview", 0},
            {"frmAbout", 0}, {"frmTrumpetGraph", 0}};
        for (const auto& [form, keys] : forms_and_keys) QTest::newRow(form) << QString(form) << keys;
    }
    void every_form() {
        QFETCH(QString, form);
        QFETCH(int, keys);
        auto t = test::install_test_services();
        t.boxes->allow_any();
        QWidget* w = load(form);
        QVERIFY(w && test::show_active(w));

        QStringList unnamed;
        for (QWidget* c : w->findChildren<QWidget*>()) {
            // A control with a focus proxy is named by its proxy.
            if (c->focusPolicy() == Qt::NoFocus || !c->isVisibleTo(w) || c->isWindow() || c->focusProxy()) continue;
            const QAccessibleInterface* a = QAccessible::queryAccessibleInterface(c);
            const QString name = a ? a->text(QAccessible::Name).trimmed() : QString();
            if (name.isEmpty()) unnamed << c->objectName() + " (" + c->metaObject()->className() + ")";
        }
        QVERIFY2(unnamed.isEmpty(), qPrintable(unnamed.join(", ")));

        int found = 0;
        for (QAbstractButton* b : w->findChildren<QAbstractButton*>()) {
            const QChar k = access_key(b->text());
            if (k.isNull() || !b->isVisible() || !b->isEnabled()) continue;
            ++found;
            const QSignalBlocker quiet(b);  // only that the key reaches it, not the click
            QTest::keyClick(w, key_of(k), Qt::AltModifier);
            QVERIFY2(b->isDown(), qPrintable(b->objectName() + " does not answer Alt+" + k));
            QTest::qWait(150);
        }
        // A plain-text label's key moves the focus to its buddy (a rich-text one only underlines another's key).
        for (QLabel* l : w->findChildren<QLabel*>()) {
            const QChar k = access_key(l->text());
            if (k.isNull() || !l->isVisible() || l->textFormat() == Qt::RichText) continue;
            ++found;
            QVERIFY2(l->buddy(), qPrintable(l->objectName() + " shows an access key that leads nowhere"));
            QTest::keyClick(w, key_of(k), Qt::AltModifier);
            QCOMPARE(QApplication::focusWidget(), l->buddy());
        }
        if (auto* bar = w->findChild<QMenuBar*>()) {
            for (QAction* top : bar->actions()) {
                const QChar k = access_key(top->text());
                if (k.isNull()) continue;
                ++found;
                QTest::keyClick(w, key_of(k), Qt::AltModifier);
                QTRY_COMPARE(QApplication::activePopupWidget(), static_cast<QWidget*>(top->menu()));
                for (QAction* a : top->menu()->actions()) found += !access_key(a->text()).isNull();
                top->menu()->close();
                QTRY_VERIFY(!QApplication::activePopupWidget());
            }
        }
        QCOMPARE(found, keys);
        forms::unload(form);
        if (form != "frmMain") forms::unload<frmMain>();
        test::flush_deletes();
    }
};

QTEST_MAIN(tst_accelerators)
#include "tst_accelerators.moc"
