#pragma once
// File > Make Continuum...: with the current document as A, the user chooses B, the number of
// steps, the frequency scale, the rows (or every row that differs) and the folder; Make writes
// the continuum on a worker thread while a progress bar in the dialog follows it, and Cancel
// stops it after the step being made (the dialog stays modal until then, so the synthesizer,
// whose state is shared by the whole process, runs for one caller at a time). When it has finished the dialog
// emits continuumWritten(folder) and closes. Main thread only; the worker owns its own copy of the continuum
// and reports back through queued calls that check the dialog still exists.
#include <QDialog>

#include <atomic>
#include <memory>

class MyDocument;
struct ContinuumSettings;
class QCheckBox;
class QComboBox;
class QDialogButtonBox;
class QLabel;
class QLayout;
class QLineEdit;
class QListWidget;
class QProgressBar;
class QSpinBox;

class ContinuumDialog : public QDialog
{
    Q_OBJECT
public:
    // `document` is A; `documentPath` is where it is saved (empty for a new document).
    ContinuumDialog(MyDocument& document, const QString& documentPath, QWidget* parent = nullptr);
    ~ContinuumDialog() override;

    // The form's fields, for the caller and for tests.
    QLineEdit* secondDocumentField() const { return m_pSecond; }
    QSpinBox* stepsField() const { return m_pSteps; }
    QComboBox* scaleField() const { return m_pScale; }
    QListWidget* rowsField() const { return m_pRows; }
    QCheckBox* allDifferingField() const { return m_pAllDiffering; }
    QLineEdit* folderField() const { return m_pFolder; }
    QCheckBox* waveField() const { return m_pWave; }
    QProgressBar* progressBar() const { return m_pProgress; }

    // Starts making the continuum as the Make button does; false (with a message shown) when the
    // form cannot be used.
    bool start();

signals:
    void continuumWritten(const QString& folder);

protected:
    void reject() override;

private:
    struct Work;
    void buildForm(const QString& documentPath);
    // A field with its Choose... button; the rows to interpolate (all that differ, or a choice).
    QLayout* browseRow(QLineEdit* field, void (ContinuumDialog::*choose)());
    QLayout* makeRowsChoice();
    void chooseSecond();
    void chooseFolder();
    void stepDone(int done);
    void finished(const QString& error);
    bool mayReplace(const std::vector<std::string>& outputs);
    // The steps of start(): the settings of the form, the continuum and its writer, the refusal of
    // outputs that are inputs (by file identity), and the worker thread.
    bool formSettings(ContinuumSettings& settings);
    std::shared_ptr<Work> prepareWork(const QString& secondPath, const QString& folder);
    bool outputsAllowed(const Work& work, const QString& secondPath, const QString& folder);
    void runWork(const std::shared_ptr<Work>& work);
    void message(const QString& text);

    MyDocument& m_document;
    QString m_strDocumentPath;
    QLineEdit* m_pSecond = nullptr;
    QSpinBox* m_pSteps = nullptr;
    QComboBox* m_pScale = nullptr;
    QCheckBox* m_pAllDiffering = nullptr;
    QListWidget* m_pRows = nullptr;
    QLineEdit* m_pFolder = nullptr;
    QCheckBox* m_pWave = nullptr;
    QProgressBar* m_pProgress = nullptr;
    QLabel* m_pStatus = nullptr;
    QDialogButtonBox* m_pButtons = nullptr;
    std::shared_ptr<Work> m_work;
};
