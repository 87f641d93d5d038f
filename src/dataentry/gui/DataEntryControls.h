#pragma once
// The left margin both data-entry windows share: thirteen parameter buttons (F0, F1 .. F5, AV,
// APV, A1F .. A5F) and six colour wells (F0, F1 .. F5), laid out beside three views stacked on
// one time axis in the proportion 1 : 2 : 1. It owns nothing: the buttons and wells are children
// of the window's widget. It reads and writes the document's track switches (m_nF0 .. m_nA5F;
// the A5F switch is read, never written) and tracing colours. Main thread only; sizes in pixels.
#include <QColor>
#include <QRect>

#include <array>
#include <functional>

class MyDocument;
class QObject;
class QPushButton;
class QToolButton;
class QWidget;

class DataEntryControls
{
public:
    enum Button { F0, F1, F2, F3, F4, F5, AV, APV, A1F, A2F, A3F, A4F, A5F, ButtonCount };
    static constexpr int kWells = 6;
    static constexpr int kMargin = 100; // the left margin that holds the controls
    static constexpr int kGap = 2;

    // The three views' places in a window content of w x h: the height less a bottom strip of
    // 26, right of the margin; with a label strip `labelHeight` tall (0: none), the views leave
    // it room under the lower one (`labels`).
    struct Stack {
        QRect upper, middle, lower, labels;
    };
    static Stack stack(int w, int h, int labelHeight = 0);
    // The height a label strip asks for: its size hint while it is shown, else 0 (no strip: 0).
    static int labelHeight(const QWidget* strip);

    // Makes the buttons and wells on `parent`. A click on button b runs pressed(b) (the radio
    // behaviour is the caller's); a colour chosen in a well's dialog runs chosen(well, colour).
    // Neither buttons nor wells take the keyboard focus: Space and the other play keys belong
    // to the window's shortcuts, never to a focused button.
    DataEntryControls(QWidget* parent, int wellWidth, QObject* context, std::function<void(Button)> pressed,
                      std::function<void(int, const QColor&)> chosen);

    QPushButton* button(int b) const { return m_buttons[static_cast<std::size_t>(b)]; }
    QColor wellColor(int well) const { return m_wellColors[static_cast<std::size_t>(well)]; }
    // Stores and shows a well's colour.
    void setWellColor(int well, const QColor& color);
    // The wells from the document's tracing colours (black without a document), the buttons
    // from its switches.
    void load(const MyDocument* doc);
    // Checks `on` and `alsoOn` (-1: none), every other button off.
    void checkOnly(int on, int alsoOn = -1);
    // The buttons' states into the document's switches, A5F's excepted.
    void storeSwitches(MyDocument& doc) const;
    // Each view's buttons beside it (one column for F0 and F1 .. F5, two for the amplitudes),
    // each well right of its button.
    void place(const Stack& views);

private:
    void placeButtons(int top, int height, int firstButton, int count, int columns);

    QWidget* m_parent;
    int m_nWellWidth;
    std::array<QPushButton*, ButtonCount> m_buttons{};
    std::array<QToolButton*, kWells> m_wells{};
    std::array<QColor, kWells> m_wellColors{};
};
