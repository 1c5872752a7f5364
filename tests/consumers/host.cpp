#include <lumetra>
#include <memory>
#include <opencv2/imgcodecs.hpp>

int main() {
    Lumetra::InitFluoDyeType();
    const FLUO_DYE_TYPE dapi = Lumetra::g_mapFluo.value("DAPI");
    const FLUO_DYE_TYPE fitc = Lumetra::g_mapFluo.value("FITC");
    cv::Mat nuclei = cv::imread("nuclei.png", cv::IMREAD_GRAYSCALE);
    cv::Mat actin = cv::imread("actin.png", cv::IMREAD_GRAYSCALE);
    Lumetra::Dye(nuclei, nuclei, dapi.nColorR, dapi.nColorG, dapi.nColorB, true, false);
    Lumetra::Dye(actin, actin, fitc.nColorR, fitc.nColorG, fitc.nColorB, true, false);
    QList<cv::Mat*> images{&nuclei, &actin};
    QList<QPoint> offsets{{0, 0}, {3, -2}};
    const std::unique_ptr<cv::Mat> picture(Lumetra::Composite(&images, &offsets));
    return picture && cv::imwrite("cells.png", *picture) ? 0 : 1;
}
