#pragma once
// A workbench for a test: the application with its alerts kept quiet (the last one is kept for
// the test to read) and a temporary folder for the files the test makes.
#include "app/WorkbenchApplication.h"

#include <QCoreApplication>
#include <QTemporaryDir>

struct Workbench {
    QTemporaryDir folder;
    WorkbenchApplication app;
    Workbench()
    {
        QCoreApplication::setOrganizationName("Tessaphon");
        QCoreApplication::setApplicationName("Tessaphon");
        app.setQuietAlerts(true);
    }
    QString path(const QString& name) const { return folder.filePath(name); }
};
