#pragma once

#include "cmake/pch_core.h"

#include <QApplication>
#include <QLabel>
#include <QMessageBox>
#include <QWidget>
