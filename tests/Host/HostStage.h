#pragma once

#include "Render/GLContext.h"
#include "support/EngineFixture.h"
#include "support/PlainImage.h"
#include "support/TestWindow.h"

#include <Trelmix/Host/ViewHost.h>
