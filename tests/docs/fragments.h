/// \file
/// What the fragments of the documents may use without declaring it: snippets_test.py makes a function
/// with these parameters of each.
#pragma once

#include <OrvCheck/ModelCheck.h>
#include <OrvCheck/ModelRepair.h>
#include <OrvCore/InstanceDataCollection.h>
#include <OrvCore/InstanceDataPlan.h>
#include <OrvCore/InstanceDataRegistry.h>
#include <OrvGL/DrawBuffers.h>
#include <OrvGL/GPUModel.h>
#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>
#include <OrvGL/Texture.h>
#include <OrvGL/TextureManager.h>
#include <OrvModel/InstanceDataPlans.h>
#include <OrvModel/ModelBuilder.h>
#include <OrvModel/ModelLoading.h>
#include <OrvModel/ModelPreparing.h>
#include <OrvModel/ModelUploading.h>
#include <OrvModel/TextureLoading.h>
#include <OrvModel/TexturePreparing.h>

#include <QtCore/QBuffer>
#include <QtCore/QLoggingCategory>
#include <QtCore/QtDebug>
#include <QtGui/QColor>

#include <cstring>

using namespace Halvard::Orv;

#define FRAGMENT_PARAMETERS                                                                        \
    const QString &fileName, QString &error, const PreparedModel &prepared, GPUModel &model,       \
        unsigned program, int bundle, int command
