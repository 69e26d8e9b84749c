#pragma once
// The trumpet graph of the log on show: the highest and lowest mean flow
// error over observation periods of 2, 5, 11, 19 and 31 minutes, with the
// overall error, as curves and as a table. It opens on the settings dialog;
// every return from a dialog over it (new settings, a new base rate)
// computes the analysis again.

#include <QWidget>

#include <array>

#include "trumpet/compute.h"

class QLabel;

namespace Ui {
class frmTrumpetGraph;
}

class frmTrumpetGraph : public QWidget {
    Q_OBJECT
public:
    explicit frmTrumpetGraph(QWidget* parent = nullptr);
    ~frmTrumpetGraph() override;

    // The activate handler: the log graph hidden, and the analysis computed
    // and shown; settings never confirmed close the form instead.
    void Form_Activate();
    void cmdScale_Click();
    void GetNewData_Click();
    void cmdSetRate_Click();
    void cmdPrint_Click();
    void cmdSave_Click();
    void mnuExitGraph_Click();

    // The last run, as the print-out reads it.
    const kyt::TrumpetResult& result() const { return result_; }

protected:
    void showEvent(QShowEvent* e) override;
    void closeEvent(QCloseEvent* e) override;

private:
    void graph_trumpet();
    void update_summary_data();
    void update_trumpet_title();
    // The settings dialog, modal, then the activation it leads to.
    void show_settings();

    Ui::frmTrumpetGraph* ui;
    kyt::TrumpetComputation computation_;
    kyt::TrumpetResult result_;
    std::array<QLabel*, 5> max_percent_{}, max_rate_{}, min_percent_{}, min_rate_{};
    bool shown_once_ = false;
};
