#pragma once
// The holder of the picture assets of the printed page: one picture per control, under the control's
// name, drawn by our own code as vectors at the control's pixel size (they carry no raster).
#include <array>
#include <string>

#include "nimbara/PageSurface.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

struct FormImpressao {
    std::string Caption = "Form1";

    Picture PictlogoZartel;
    // The column strips of the table, ImgA to ImgP.
    Picture Pic_Barra_A1, Pic_barraB1, pic_barraC1, pic_barraD1, pic_barraE1, pic_barraF1, pic_barraG1, pic_barraH1,
        pic_barraI1, pic_barraJ1, pic_barraK1, pic_barraL1, pic_barraM1, pic_barraN1, pic_barraO1, pic_barraP1;
    Picture pic_circuloAceiteConferido;
    Picture pic_euro;
    Picture pict_cobrado;
    Picture pict_ec_aceitante;
    Picture pict_ponto;
    Picture pict_virgula;
    Picture Pic_barra_ProcessadoComp;
    Picture PictlogoZartel_old;  // an earlier logo, kept on the form and never drawn

    // The strips in the order of the table's columns, A first.
    std::array<const Picture*, 16> strips() const
    {
        return {&Pic_Barra_A1, &Pic_barraB1, &pic_barraC1, &pic_barraD1, &pic_barraE1, &pic_barraF1,
                &pic_barraG1,  &pic_barraH1, &pic_barraI1, &pic_barraJ1, &pic_barraK1, &pic_barraL1,
                &pic_barraM1,  &pic_barraN1, &pic_barraO1, &pic_barraP1};
    }
};

// The form with every picture drawn; made once, on first use, and shared.
NIMBARA_API const FormImpressao& form_impressao();

}  // namespace nimbara
