#pragma once
// The help topic window: the topic chosen in a help list, read from its
// file in the help folder.

#include <QWidget>

#include <string>
#include <vector>

namespace Ui {
class frmKYTOverview;
}

class frmKYTOverview : public QWidget {
    Q_OBJECT
public:
    explicit frmKYTOverview(QWidget* parent = nullptr);
    ~frmKYTOverview() override;

    // Caption and text of the topic that help_topic and help_page name.
    void Form_Activate();

    // Where topic files are looked for: the help folder, then the folder an
    // installed console ships them in.
    static std::vector<std::string> help_folders();

private:
    Ui::frmKYTOverview* ui;
};
