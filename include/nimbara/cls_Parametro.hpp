#pragma once
// The twelve print and barcode settings kept in the one row of Tbl_Parametro.
#include <array>
#include <memory>
#include <string>

#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/cls_ParametroA.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

class NIMBARA_API cls_Parametro {
public:
    // Opens the connection of the ini file and loads the settings: the first row of Tbl_Parametro,
    // or the defaults when the table is empty. Without a connection the load raises DatabaseError.
    cls_Parametro();
    // The same on the host's own connection.
    explicit cls_Parametro(std::shared_ptr<Database> db);

    std::string VCod2DFonteSize;
    std::string vCod2DRatio;
    std::string vCod2DNColunas;
    std::string vCod2DNLinhas;
    std::string vCod2DErroLevel;
    std::string vCod2DPDFMode;
    std::string vCod2DTruncated;
    std::string vCod2DApplyTilde;
    std::string vGuiaNVias;
    std::string vGuiaMargensTopo;
    std::string vGuiaMargensEsquerda;
    std::string vCodTerceiro;

    std::shared_ptr<Database> myConn;

    // Every row of Tbl_Parametro.
    void SelectAll(Recordset& rs);

    // Checks the values (ParametroError with the first fault, std::invalid_argument for a value that
    // is no number), then every setting by the rules printing reads it with (ParametroError naming
    // the setting: print_setting_problem), then inserts the row or rewrites every row there is.
    void DoSave();

    // The properties in column order, and the column names, for those that walk all twelve.
    static constexpr std::size_t kSettings = 12;
    static const std::array<const char*, kSettings>& ColumnNames();
    static const std::array<const char*, kSettings>& PropertyNames();
    std::array<std::string*, kSettings> Properties();

private:
    void load();
    bool Validate() const;
    void DoInsert();
    void DoUpdate();
};

}  // namespace nimbara
