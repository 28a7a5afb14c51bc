/*
 * A camera for a program that is started with this library in LD_PRELOAD: /dev/video7 answers as a V4L2
 * device that gives grey frames in YUYV, 64x48 or 96x64, at 30 or 15 a second. Opening /dev/video8 is not
 * permitted.
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <linux/videodev2.h>
#include <stdarg.h>
#include <stdint.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <time.h>
#include <unistd.h>

enum { BUFFERS = 4, PAGE = 16384 };

static int camera = -1; /* the descriptor of an anonymous file that holds the buffers */
static struct v4l2_pix_format format = {.width = 64, .height = 48};
static unsigned rate = 30;
static unsigned next_buffer, frame;

static int open_path(const char* path, int flags, mode_t mode) {
    static int (*real)(const char*, int, ...);
    if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "open64");
    if (strcmp(path, "/dev/video8") == 0) {
        errno = EACCES;
        return -1;
    }
    if (strcmp(path, "/dev/video7") != 0) return real(path, flags, mode);
    camera = memfd_create("camera", MFD_CLOEXEC);
    if (ftruncate(camera, BUFFERS * PAGE) != 0) return -1;
    return camera;
}

int open(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return open_path(path, flags, mode);
}

int open64(const char* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return open_path(path, flags, mode);
}

int access(const char* path, int mode) {
    static int (*real)(const char*, int);
    if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "access");
    return strcmp(path, "/dev/video7") == 0 || strcmp(path, "/dev/video8") == 0 ? 0 : real(path, mode);
}

int fstat64(int descriptor, struct stat64* status) {
    static int (*real)(int, struct stat64*);
    if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "fstat64");
    const int result = real(descriptor, status);
    if (descriptor == camera && camera >= 0) status->st_mode = S_IFCHR | 0600;
    return result;
}

static int refuse(int error) {
    errno = error;
    return -1;
}

static void complete(struct v4l2_pix_format* wanted) {
    if (wanted->width != 96 || wanted->height != 64) {
        wanted->width = 64;
        wanted->height = 48;
    }
    wanted->pixelformat = V4L2_PIX_FMT_YUYV;
    wanted->field = V4L2_FIELD_NONE;
    wanted->bytesperline = 2 * wanted->width;
    wanted->sizeimage = wanted->bytesperline * wanted->height;
    format = *wanted;
}

static int give_frame(struct v4l2_buffer* buffer) {
    const struct timespec pause = {0, 1000000000L / rate};
    nanosleep(&pause, NULL);
    uint8_t pixels[PAGE];
    memset(pixels, (int)(40 + frame % 100), sizeof pixels);
    buffer->index = next_buffer;
    buffer->bytesused = format.sizeimage;
    buffer->flags = 0;
    if (pwrite(camera, pixels, format.sizeimage, (off_t)next_buffer * PAGE) < 0) return -1;
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    buffer->timestamp.tv_sec = now.tv_sec;
    buffer->timestamp.tv_usec = now.tv_nsec / 1000;
    next_buffer = (next_buffer + 1) % BUFFERS;
    ++frame;
    return 0;
}

int ioctl(int descriptor, unsigned long request, ...) {
    static int (*real)(int, unsigned long, ...);
    if (real == NULL) *(void**)&real = dlsym(RTLD_NEXT, "ioctl");
    va_list arguments;
    va_start(arguments, request);
    void* argument = va_arg(arguments, void*);
    va_end(arguments);
    if (camera < 0 || descriptor != camera) return real(descriptor, request, argument);
    switch ((uint32_t)request) {
        case VIDIOC_QUERYCAP: {
            struct v4l2_capability* capability = argument;
            memset(capability, 0, sizeof *capability);
            strcpy((char*)capability->card, "Virtual Camera");
            capability->capabilities = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
            return 0;
        }
        case VIDIOC_ENUM_FMT: {
            struct v4l2_fmtdesc* description = argument;
            if (description->index > 0) return refuse(EINVAL);
            description->pixelformat = V4L2_PIX_FMT_YUYV;
            return 0;
        }
        case VIDIOC_ENUM_FRAMESIZES: {
            struct v4l2_frmsizeenum* size = argument;
            if (size->index > 1) return refuse(EINVAL);
            size->type = V4L2_FRMSIZE_TYPE_DISCRETE;
            size->discrete.width = size->index == 0 ? 64 : 96;
            size->discrete.height = size->index == 0 ? 48 : 64;
            return 0;
        }
        case VIDIOC_ENUM_FRAMEINTERVALS: {
            struct v4l2_frmivalenum* interval = argument;
            if (interval->index > 1) return refuse(EINVAL);
            interval->type = V4L2_FRMIVAL_TYPE_DISCRETE;
            interval->discrete.numerator = 1;
            interval->discrete.denominator = interval->index == 0 ? 30 : 15;
            return 0;
        }
        case VIDIOC_G_FMT:
        case VIDIOC_S_FMT:
        case VIDIOC_TRY_FMT:
            complete(&((struct v4l2_format*)argument)->fmt.pix);
            return 0;
        case VIDIOC_G_PARM:
        case VIDIOC_S_PARM: {
            struct v4l2_captureparm* capture = &((struct v4l2_streamparm*)argument)->parm.capture;
            if ((uint32_t)request == VIDIOC_S_PARM && capture->timeperframe.denominator == 15) rate = 15;
            capture->capability = V4L2_CAP_TIMEPERFRAME;
            capture->timeperframe.numerator = 1;
            capture->timeperframe.denominator = rate;
            return 0;
        }
        case VIDIOC_REQBUFS:
            ((struct v4l2_requestbuffers*)argument)->count = BUFFERS;
            return 0;
        case VIDIOC_QUERYBUF: {
            struct v4l2_buffer* buffer = argument;
            buffer->length = PAGE;
            buffer->m.offset = buffer->index * PAGE;
            return 0;
        }
        case VIDIOC_G_INPUT:
        case VIDIOC_S_INPUT:
        case VIDIOC_ENUMINPUT:
        case VIDIOC_QBUF:
        case VIDIOC_STREAMON:
        case VIDIOC_STREAMOFF:
            return 0;
        case VIDIOC_DQBUF:
            return give_frame(argument);
        default:
            return refuse(ENOTTY);
    }
}
