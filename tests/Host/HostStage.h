#pragma once

#include "Render/GLContext.h"
#include "support/EngineFixture.h"
#include "support/Pixels.h"
#include "support/TestWindow.h"

#include <Trelmix/Host/ViewHost.h>
