// bench_opencv: times the operations of OpenCV that match our primitives, on one thread, and prints the
// columns of `check_kernels --bench --csv`. Most results are not bit-identical.
//
//     bench_opencv [WIDTH HEIGHT]
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include <opencv2/imgproc.hpp>

#include "bench/Timing.h"

namespace {

using cv::Mat;

/// An operation from one picture to another. Both hold noise, and an operation may also work in place.
struct Operation {
    std::string name;
    std::function<void(Mat& src, Mat& dst)> run;
    int srcType = CV_8U;
    int dstType = CV_8U;
    double dstScale = 1;  // of the sides
};

std::vector<Operation> Operations(cv::Size size) {
    const auto warp = [=](int interpolation) {
        const cv::Point2f centre(static_cast<float>(size.width) / 2, static_cast<float>(size.height) / 2);
        const Mat turn = cv::getRotationMatrix2D(centre, 10, 1);
        return [=](Mat& s, Mat& d) {
            cv::warpAffine(s, d, turn, d.size(), interpolation, cv::BORDER_TRANSPARENT);
        };
    };
    const auto resize = [](int interpolation) {
        return [=](Mat& s, Mat& d) { cv::resize(s, d, d.size(), 0, 0, interpolation); };
    };
    const auto flip = [](int code) { return [=](Mat&, Mat& d) { cv::flip(d, d, code); }; };
    const auto blur = [](int side) { return [=](Mat& s, Mat& d) { cv::blur(s, d, {side, side}); }; };
    const auto gauss = [](int side) {
        return [=](Mat& s, Mat& d) { cv::GaussianBlur(s, d, {side, side}, 0); };
    };
    const auto sobel = [](int side) { return [=](Mat& s, Mat& d) { cv::Sobel(s, d, CV_16S, 0, 1, side); }; };
    const Mat table(1, 256, CV_8U, cv::Scalar(7));
    const Mat sepia = (cv::Mat_<float>(3, 4) << .39, .77, .19, 0, .35, .69, .17, 0, .27, .53, .13, 0);
    const Mat taps = (cv::Mat_<float>(1, 7) << 2, 21, 93, 160, 93, 21, 2) / 392;
    return {
        {"setTo", [](Mat&, Mat& d) { d.setTo(77); }},
        {"copyTo", [](Mat& s, Mat& d) { s.copyTo(d); }},
        {"mean", [](Mat& s, Mat&) { (void)cv::mean(s); }},
        {"add", [](Mat& s, Mat& d) { cv::add(s, d, d); }},
        {"subtract", [](Mat& s, Mat& d) { cv::subtract(d, s, d); }},
        {"multiply, scale 1/255", [](Mat& s, Mat& d) { cv::multiply(s, d, d, 1 / 255.0); }},
        {"bitwise_and", [](Mat& s, Mat& d) { cv::bitwise_and(s, d, d); }},
        {"bitwise_not", [](Mat&, Mat& d) { cv::bitwise_not(d, d); }},
        {"threshold, truncate", [](Mat&, Mat& d) { cv::threshold(d, d, 100, 0, cv::THRESH_TRUNC); }},
        {"LUT", [=](Mat& s, Mat& d) { cv::LUT(s, table, d); }},
        {"transform, 3 by 4", [=](Mat&, Mat& d) { cv::transform(d, d, sepia); }, CV_8UC3, CV_8UC3},
        {"equalizeHist", [](Mat&, Mat& d) { cv::equalizeHist(d, d); }},
        {"resize, linear, half", resize(cv::INTER_LINEAR), CV_8U, CV_8U, 0.5},
        {"resize, linear, double", resize(cv::INTER_LINEAR), CV_8U, CV_8U, 2},
        {"resize, nearest, half", resize(cv::INTER_NEAREST), CV_8U, CV_8U, 0.5},
        {"resize, Lanczos of 8, half", resize(cv::INTER_LANCZOS4), CV_8U, CV_8U, 0.5},
        {"warpAffine, nearest", warp(cv::INTER_NEAREST)},
        {"warpAffine, linear", warp(cv::INTER_LINEAR)},
        {"warpAffine, cubic", warp(cv::INTER_CUBIC)},
        {"flip, upside down", flip(0)},
        {"flip, left to right", flip(1)},
        {"GaussianBlur, 3x3", gauss(3)},
        {"GaussianBlur, 5x5", gauss(5)},
        {"blur, 3x3", blur(3)},
        {"blur, 5x5", blur(5)},
        {"blur, 21x21", blur(21)},
        {"medianBlur, 5x5", [](Mat& s, Mat& d) { cv::medianBlur(s, d, 5); }},
        {"Sobel, 3x3", sobel(3), CV_8U, CV_16S},
        {"Sobel, 5x5", sobel(5), CV_8U, CV_16S},
        {"Scharr", [](Mat& s, Mat& d) { cv::Scharr(s, d, CV_16S, 0, 1); }, CV_8U, CV_16S},
        {"filter2D, 7 along columns", [=](Mat& s, Mat& d) { cv::filter2D(s, d, CV_8U, taps.t()); }},
        {"filter2D, 7 along rows", [=](Mat& s, Mat& d) { cv::filter2D(s, d, CV_8U, taps); }},
        {"dilate, 3x3", [](Mat& s, Mat& d) { cv::dilate(s, d, Mat()); }},
        {"erode, 3x3", [](Mat& s, Mat& d) { cv::erode(s, d, Mat()); }},
        {"Canny", [](Mat& s, Mat& d) { cv::Canny(s, d, 100, 300, 3, true); }},
        {"integral",
         [](Mat& s, Mat&) {
             Mat sum;
             cv::integral(s, sum, CV_32S);
         }},
    };
}

}  // namespace

int main(int argc, char** argv) {
    const cv::Size size = argc == 3 ? cv::Size(std::atoi(argv[1]), std::atoi(argv[2])) : cv::Size(1280, 720);
    if (argc == 2 || argc > 3 || size.width < 16 || size.height < 16) {
        std::fputs("usage: bench_opencv [WIDTH HEIGHT]\n", stderr);
        return 2;
    }
    cv::setNumThreads(1);
    std::printf("kernel,level,size,ms,model_ms,x_memcpy\n");
    for (const Operation& operation : Operations(size)) {
        const double scale = operation.dstScale;
        Mat src(size, operation.srcType),
            dst(cv::Size(cvRound(size.width * scale), cvRound(size.height * scale)), operation.dstType);
        cv::randu(src, 0, 256);
        cv::randu(dst, 0, 256);
        bench::Copy copy(src.total() * src.elemSize());
        std::vector<double> times, copies;
        for (double total = 0; times.size() < 12 || (times.size() < 400 && total < 0.2);
             total += times.back()) {
            copies.push_back(copy.Time(src.data));
            times.push_back(bench::Timed([&] { operation.run(src, dst); }));
        }
        const double time = bench::Median(times);
        std::printf("\"OpenCV/%s\",,%dx%d,%.4f,,%.2f\n", operation.name.c_str(), size.width, size.height,
                    time * 1e3, time / bench::Median(copies));
        std::fflush(stdout);
    }
}
