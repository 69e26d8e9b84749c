#include <QtTest>

#include "acquisition/live_test.h"

using namespace kyt;

Q_DECLARE_METATYPE(kyt::OcclusionUnit)

namespace {

QString shown(const AxisChange& c) {
    const auto bound = [](const std::optional<double>& v) { return v ? QString::number(*v) : QString("-"); };
    return bound(c.min) + "/" + bound(c.max);
}

}  // namespace

class tst_live_test : public QObject {
    Q_OBJECT
private slots:
    // The single-rate axis over a run of (flow, average) samples.
    void flow_axis_data() {
        QTest::addColumn<QString>("set_rate");
        QTest::addColumn<QList<QPointF>>("samples");
        QTest::addColumn<QStringList>("changes");  // initial axis, then per sample: "min/max", "-" unchanged
        QTest::newRow("no rate; flow between 0 and 100 moves both on the second sample")
            << "" << QList<QPointF>{{99, 100.4}, {99.5, 100}, {98, 100}, {103.2, 100}}
            << QStringList{"50/150", "50/150", "99/100", "98/-", "-/106"};
        QTest::newRow("an average below 1 gives 0 and 0")
            << "10" << QList<QPointF>{{0.5, 0.6}} << QStringList{"5/15", "0/0"};
    }
    void flow_axis() {
        QFETCH(QString, set_rate);
        QFETCH(QList<QPointF>, samples);
        QFETCH(QStringList, changes);
        QStringList seen{shown(FlowAxis::initial(set_rate.toStdString()))};
        FlowAxis axis;
        for (const QPointF& s : samples) seen << shown(axis.sample(s.x(), s.y()));
        QCOMPARE(seen, changes);
    }

    void pressure_axis_data() {
        QTest::addColumn<OcclusionUnit>("unit");
        QTest::addColumn<QList<QPointF>>("samples");  // (psi, mmhg)
        QTest::addColumn<QStringList>("changes");     // title, initial, then per sample
        QTest::newRow("PSI, first below 1")
            << OcclusionUnit::psi << QList<QPointF>{{0.4, 20}, {0.2, 10}, {3.7, 190}}
            << QStringList{"Pressure(PSI)", "0/15", "0/1", "0/-", "-/4"};
        QTest::newRow("mmHg follows mmHg alone")
            << OcclusionUnit::mmhg << QList<QPointF>{{1, 300}, {9, 301.5}} << QStringList{"Pressure(mmHg)", "0/800", "150/450", "-/302"};
        QTest::newRow("kPa graphs PSI times 7.51")
            << OcclusionUnit::kpa << QList<QPointF>{{10, 517}} << QStringList{"Pressure(kPa)", "0/100", "37.5/112.5"};
    }
    void pressure_axis() {
        QFETCH(OcclusionUnit, unit);
        QFETCH(QList<QPointF>, samples);
        QFETCH(QStringList, changes);
        PressureAxis axis(unit);
        QStringList seen{QString::fromStdString(axis.title()), shown(axis.initial())};
        for (const QPointF& s : samples) {
            OTData r;
            r.psi = s.x();
            r.kpa = s.x() * occlusion_kpa_factor;
            r.mmhg = s.y();
            seen << shown(axis.sample(r));
        }
        QCOMPARE(seen, changes);
    }

    // A new summary drops old text; a control block leaves a line end, "e\r" is an error, 7 ends it.
    void summary_gather() {
        SummaryGather g;
        bool first = true;
        QVERIFY(!g.take("old text", first).ended);
        first = true;  // a new summary starts
        QVERIFY(!g.take("SUMMARY\r\n", first).ended);
        QVERIFY(!first);
        QVERIFY(!g.take("\x05", first).ended);
        QVERIFY(g.take("e\r", first).reply_error);
        QVERIFY(g.take("Rate 100\r\n\x07", first).ended);  // the block with the 7 leaves only a line end
        QCOMPARE(g.text(), std::string("SUMMARY\r\n\r\ne\r\r\n"));
    }
};

QTEST_MAIN(tst_live_test)
#include "tst_live_test.moc"
