// -*- C++ -*-
/// @file
/// liblumetra-render: from planes and display settings to one image. All of its C++ headers.
#pragma once

#include "render/channel.h"
#include "render/colormaps.h"
#include "render/dyes.h"
#include "render/framing.h"
#include "render/histogram.h"
#include "render/image_colouring.h"
#include "render/image_composite.h"
#include "render/level_policy.h"
#include "render/overlap.h"
#include "render/palette.h"
#include "render/panels.h"
#include "render/projection.h"
#include "render/render_error.h"
#include "render/renderer.h"
#include "render/shrink.h"
