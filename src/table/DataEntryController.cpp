#include "table/DataEntryController.h"

DataEntryController::~DataEntryController() = default;
