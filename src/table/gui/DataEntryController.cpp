#include "table/gui/DataEntryController.h"

DataEntryController::~DataEntryController() = default;
