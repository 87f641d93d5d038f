#pragma once
// The frame of the modal option panels: a window-modal dialog on the parent window, filled
// from the document by setup(), ended by OK with 1000 or by Cancel with 1001; only OK writes
// the panel back to the document with save(). Main thread only.
#include <QDialog>

#include <initializer_list>

class MyDocument;
class QDialogButtonBox;
class QLabel;
class QLayout;
class QPushButton;

class OptionPanel : public QDialog
{
    Q_OBJECT
public:
    static constexpr int kOK = 1000;
    static constexpr int kCancel = 1001;

    explicit OptionPanel(QWidget* parent);

    // Fills the panel from the document, runs it modally and saves on OK; the modal code.
    int showInWindow(QWidget* parent, MyDocument* doc);

    virtual void setup(MyDocument* doc) = 0;
    virtual void save(MyDocument* doc) = 0;

public slots:
    // Ends with OK unless the panel refuses what it shows (mayAccept).
    void oktButton()
    {
        if (mayAccept())
            done(kOK);
    }
    void canceltButton() { done(kCancel); }

protected:
    // Whether OK may end the panel; a panel that refuses says why in itself and stays open.
    virtual bool mayAccept() { return true; }
    // The OK / Cancel row (and a Default button when `withDefault`), for the subclass layout.
    QDialogButtonBox* makeButtons(bool withDefault);
    // The panel's layout: `top` (when given), the widgets `below` it (null ones left out), then
    // the button row of makeButtons, which it answers.
    QDialogButtonBox* layOut(QLayout* top, std::initializer_list<QWidget*> below, bool withDefault);
    // The line that says why OK was refused (dark red, wrapped), hidden until there is a reason.
    static QLabel* makeRefusalLabel();
    QPushButton* defaultButton() const { return m_pDefault; }
    void reject() override { done(kCancel); } // Escape and the close box cancel

private:
    QPushButton* m_pDefault = nullptr;
};
