#include <OrvGL/HeadlessContext.h>

#include "EGLLibrary.h"
#include "NativeContext.h"

#include <OrvGL/OpenGLDeviceContext.h>
#include <OrvGL/OpenGLFunctions.h>

#include <QtCore/QStringList>
#include <QtCore/QVector>
#include <QtCore/QtDebug>

#include <algorithm>
#include <functional>

namespace Halvard::Orv {

// Displays are initialised and never terminated: there is one per platform in the process, perhaps
// in use by a window toolkit too, and terminating it would end everybody's contexts.
struct HeadlessContext::Private
{
    std::shared_ptr<const EGLLibrary> egl = EGLLibrary::instance();
    EGLDisplay display = EGL_NO_DISPLAY;
    EGLConfig config = nullptr;
    EGLContext context = EGL_NO_CONTEXT;
    EGLSurface surface = EGL_NO_SURFACE; // a small one where a context cannot do without
    QString platform;                    // which way the display was found
    QString description;

    Private() = default;
    ~Private();
    Private(const Private &) = delete;
    Private &operator=(const Private &) = delete;
};

namespace {

constexpr int NeededVersion = 43;

// Puts back what was current on the thread, and the API that EGL calls of the thread are about.
class CurrentEGLKeeper
{
public:
    explicit CurrentEGLKeeper(const EGLLibrary &egl)
        : _egl(egl), _api(_egl.queryAPI()), _context(_egl.getCurrentContext()),
          _display(_egl.getCurrentDisplay()), _draw(_egl.getCurrentSurface(EGL_DRAW)),
          _read(_egl.getCurrentSurface(EGL_READ))
    {}

    ~CurrentEGLKeeper()
    {
        const EGLDisplay display = _egl.getCurrentDisplay();
        if (_context != EGL_NO_CONTEXT)
            _egl.makeCurrent(_display, _draw, _read, _context);
        else if (display != EGL_NO_DISPLAY)
            _egl.makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        _egl.bindAPI(_api);
    }

    CurrentEGLKeeper(const CurrentEGLKeeper &) = delete;
    CurrentEGLKeeper &operator=(const CurrentEGLKeeper &) = delete;

private:
    const EGLLibrary &_egl;
    EGLenum _api;
    EGLContext _context;
    EGLDisplay _display;
    EGLSurface _draw;
    EGLSurface _read;
};

// A way to a display, to be opened only when the ways before it have failed.
struct Platform
{
    QString name;
    std::function<EGLDisplay()> open;
};

QVector<EGLDeviceEXT> devices(const EGLLibrary &egl)
{
    EGLint count = 0;
    if (!egl.hasDevicePlatform || !egl.queryDevices(0, nullptr, &count) || count <= 0)
        return {};
    QVector<EGLDeviceEXT> found(count, nullptr);
    if (!egl.queryDevices(count, found.data(), &count))
        return {};
    found.resize(std::clamp(count, 0, found.size()));
    return found;
}

// Graphics hardware first: without a surface, Mesa draws in software wherever the hardware is of a
// driver that is not its own.
QVector<Platform> platforms(const EGLLibrary &egl)
{
    QVector<Platform> hardware;
    QVector<Platform> others;
    if (egl.hasSurfacelessPlatform) {
        others.append({QStringLiteral("surfaceless"), [&egl] {
                           return egl.getPlatformDisplay(EGL_PLATFORM_SURFACELESS_MESA,
                                                         EGL_DEFAULT_DISPLAY, nullptr);
                       }});
    }
    int number = 0;
    for (EGLDeviceEXT device : devices(egl)) {
        QVector<Platform> &ways = egl.isHardware(device) ? hardware : others;
        ways.append({QStringLiteral("device %1").arg(number++), [&egl, device] {
                         return egl.getPlatformDisplay(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
                     }});
    }
    others.append({QStringLiteral("default display"),
                   [&egl] { return egl.getDisplay(EGL_DEFAULT_DISPLAY); }});
    return hardware + others;
}

EGLConfig chooseConfig(const EGLLibrary &egl, EGLDisplay display)
{
    const EGLint wanted[] = {EGL_SURFACE_TYPE, EGL_PBUFFER_BIT, EGL_RENDERABLE_TYPE, EGL_OPENGL_BIT,
                             EGL_NONE};
    EGLConfig config = nullptr;
    EGLint count = 0;
    if (!egl.chooseConfig(display, wanted, &config, 1, &count) || count < 1)
        return nullptr;
    return config;
}

// The highest version first: some drivers give exactly what is asked for.
EGLContext createCoreContext(const EGLLibrary &egl, EGLDisplay display, EGLConfig config,
                             EGLContext shareWith)
{
    for (EGLint minor = 6; minor >= NeededVersion % 10; --minor) {
        const EGLint wanted[] = {EGL_CONTEXT_MAJOR_VERSION,
                                 NeededVersion / 10,
                                 EGL_CONTEXT_MINOR_VERSION,
                                 minor,
                                 EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                 EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                 EGL_NONE};
        const EGLContext context = egl.createContext(display, config, shareWith, wanted);
        if (context != EGL_NO_CONTEXT)
            return context;
    }
    return EGL_NO_CONTEXT;
}

EGLSurface createSmallSurface(const EGLLibrary &egl, EGLDisplay display, EGLConfig config)
{
    const EGLint size[] = {EGL_WIDTH, 1, EGL_HEIGHT, 1, EGL_NONE};
    return egl.createPbufferSurface(display, config, size);
}

QString advice(const QStringList &failures)
{
    return QStringLiteral("No OpenGL %1.%2 context can be made: %3. Install a driver; libegl1, "
                          "libegl-mesa0, libgl1 and libgl1-mesa-dri make a software one.")
        .arg(NeededVersion / 10)
        .arg(NeededVersion % 10)
        .arg(failures.join(QStringLiteral("; ")));
}

} // namespace

HeadlessContext::Private::~Private()
{
    if (context != EGL_NO_CONTEXT) {
        // Before the handle can be handed out again.
        OpenGLDeviceContext::forget(context);
        if (egl->getCurrentContext() == context)
            egl->makeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
        egl->destroyContext(display, context);
    }
    if (surface != EGL_NO_SURFACE)
        egl->destroySurface(display, surface);
}

// Everything up to a context of the needed version, tried out; else null and what failed.
std::unique_ptr<HeadlessContext::Private>
HeadlessContext::open(EGLDisplay display, const Private *shareWith, QString *failure)
{
    const auto fail = [failure](const QString &why) {
        *failure = why;
        return nullptr;
    };
    auto d = std::make_unique<Private>();
    const EGLLibrary &egl = *d->egl;
    d->display = display;
    if (d->display == EGL_NO_DISPLAY)
        return fail(egl.failure("getting the display"));
    if (!egl.initialize(d->display, nullptr, nullptr))
        return fail(egl.failure("eglInitialize"));
    if (!egl.bindAPI(EGL_OPENGL_API))
        return fail(egl.failure("eglBindAPI(EGL_OPENGL_API)"));
    d->config = shareWith ? shareWith->config : chooseConfig(egl, d->display);
    if (!d->config)
        return fail(QStringLiteral("no configuration for OpenGL"));
    d->context = createCoreContext(egl, d->display, d->config,
                                   shareWith ? shareWith->context : EGL_NO_CONTEXT);
    if (d->context == EGL_NO_CONTEXT)
        return fail(egl.failure("eglCreateContext"));
    if (!egl.hasExtension(d->display, "EGL_KHR_surfaceless_context")) {
        d->surface = createSmallSurface(egl, d->display, d->config);
        if (d->surface == EGL_NO_SURFACE)
            return fail(egl.failure("eglCreatePbufferSurface"));
    }
    if (!egl.makeCurrent(d->display, d->surface, d->surface, d->context))
        return fail(egl.failure("eglMakeCurrent"));
    const QSharedPointer<OpenGLDeviceContext> context = OpenGLDeviceContext::current();
    if (!context || context->version() < NeededVersion)
        return fail(QStringLiteral("the driver gives OpenGL %1 only")
                        .arg(context ? context->description() : QString()));
    d->description = context->description();
    return d;
}

std::unique_ptr<HeadlessContext> HeadlessContext::create(QString *error,
                                                         const HeadlessContext *shareWith)
{
    QString ignored;
    QString &message = error ? *error : ignored;
    message.clear();
    const std::shared_ptr<const EGLLibrary> library = EGLLibrary::instance();
    const EGLLibrary &egl = *library;
    if (!egl.error.isNull()) {
        message = advice({egl.error});
        return nullptr;
    }
    const NativeContext native = NativeContext::current();
    if (native.handle && native.api != NativeContext::EGL) {
        message = QStringLiteral("A context of GLX is current on the thread, where EGL cannot make "
                                 "another one current: make none current before.");
        return nullptr;
    }
    const CurrentEGLKeeper keeper(egl);
    const Private *const shared = shareWith ? shareWith->_d.get() : nullptr;
    QVector<Platform> ways;
    if (shared)
        ways.append({shared->platform, [shared] { return shared->display; }});
    else
        ways = platforms(egl);
    QStringList failures;
    for (const Platform &way : qAsConst(ways)) {
        QString failure;
        if (auto d = open(way.open(), shared, &failure)) {
            d->platform = way.name;
            return std::unique_ptr<HeadlessContext>(new HeadlessContext(std::move(d)));
        }
        failures.append(way.name + QLatin1String(": ") + failure);
    }
    message = advice(failures);
    return nullptr;
}

HeadlessContext::HeadlessContext(std::unique_ptr<Private> d) : _d(std::move(d)) {}

HeadlessContext::~HeadlessContext() = default;

bool HeadlessContext::makeCurrent()
{
    const EGLLibrary &egl = *_d->egl;
    egl.bindAPI(EGL_OPENGL_API);
    if (egl.makeCurrent(_d->display, _d->surface, _d->surface, _d->context))
        return true;
    qWarning("HeadlessContext::makeCurrent: %s", qUtf8Printable(egl.failure("eglMakeCurrent")));
    return false;
}

void HeadlessContext::doneCurrent()
{
    const EGLLibrary &egl = *_d->egl;
    if (egl.getCurrentContext() != _d->context)
        return;
    egl.bindAPI(EGL_OPENGL_API);
    egl.makeCurrent(_d->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
}

QString HeadlessContext::description() const
{
    return QStringLiteral("%1 (EGL, %2)").arg(_d->description, _d->platform);
}

} // namespace Halvard::Orv
