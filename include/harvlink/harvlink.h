#pragma once

/// @file
/// The whole C++ interface of Harvlink.

#include "harvlink/ConnectOptions.h"
#include "harvlink/ConnectionStatistics.h"
#include "harvlink/ControlCommandsInterface.h"
#include "harvlink/ControlGroupId.h"
#include "harvlink/ControlGroupInterface.h"
#include "harvlink/ControllerStateInterface.h"
#include "harvlink/ControllerVersion.h"
#include "harvlink/FaultInterface.h"
#include "harvlink/FileInterface.h"
#include "harvlink/Fleet.h"
#include "harvlink/FrameMath.h"
#include "harvlink/IOInterface.h"
#include "harvlink/JobInterface.h"
#include "harvlink/KinematicsInterface.h"
#include "harvlink/MotionManagerInterface.h"
#include "harvlink/PositionData.h"
#include "harvlink/QuorvanController.h"
#include "harvlink/StatusInfo.h"
#include "harvlink/VariablesInterface.h"
#include "harvlink/Version.h"
