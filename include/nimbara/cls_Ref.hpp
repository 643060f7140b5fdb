#pragma once
// The eleven code lists of a Guia line, read only, for a host's selection boxes. One family: the
// same properties and operations over one table each.
#include <memory>
#include <string>
#include <string_view>

#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// What every member shares. A member is made with the connection of the ini file or with the
// host's own Database.
class NIMBARA_API RefList {
public:
    std::string vCodigo;
    std::string vDesignacao;
    bool vActivo = false;         // stays false on the client references, whose table has no Activo
    std::string vObservacoes;     // stays empty on the client references

    std::shared_ptr<Database> myConn;

    // Loads the row of a code; an unknown code raises DatabaseError and changes nothing.
    void SelectMe(const std::string& Codigo);
    // All rows, ordered by code.
    void SelectAll(Recordset& rstab);
    // The active rows, ordered by code; all rows on the client references.
    void SelectAllActive(Recordset& rstab);

    // The table this member reads.
    std::string_view Table() const { return table_; }

protected:
    RefList(std::string_view table, bool has_activo, std::shared_ptr<Database> db);

private:
    std::string_view table_;
    bool has_activo_;
};

// The distribution scopes: tbl_N_AmbitoDistribuicao.
class NIMBARA_API cls_Ref_ADistribuicao : public RefList {
public:
    cls_Ref_ADistribuicao();
    explicit cls_Ref_ADistribuicao(std::shared_ptr<Database> db);
};

// The contents: Tbl_Q_Conteudo.
class NIMBARA_API cls_Ref_Conteudos : public RefList {
public:
    cls_Ref_Conteudos();
    explicit cls_Ref_Conteudos(std::shared_ptr<Database> db);
};

// The discounts: tbl_H_Descontos.
class NIMBARA_API cls_Ref_Descontos : public RefList {
public:
    cls_Ref_Descontos();
    explicit cls_Ref_Descontos(std::shared_ptr<Database> db);
};

// The sampling delivery modes: tbl_K_EntregaSampling.
class NIMBARA_API cls_Ref_ESampling : public RefList {
public:
    cls_Ref_ESampling();
    explicit cls_Ref_ESampling(std::shared_ptr<Database> db);
};

// The formats: tbl_F_Formato.
class NIMBARA_API cls_Ref_Formato : public RefList {
public:
    cls_Ref_Formato();
    explicit cls_Ref_Formato(std::shared_ptr<Database> db);
};

// The pre-treatments: Tbl_PreTratamento.
class NIMBARA_API cls_Ref_PreTratamento : public RefList {
public:
    cls_Ref_PreTratamento();
    explicit cls_Ref_PreTratamento(std::shared_ptr<Database> db);
};

// The products: tbl_B_Produto.
class NIMBARA_API cls_Ref_Produto : public RefList {
public:
    cls_Ref_Produto();
    explicit cls_Ref_Produto(std::shared_ptr<Database> db);
};

// The client references (no Activo: the active list is the whole list): Tbl_P_RefCliente.
class NIMBARA_API cls_Ref_RefCliente : public RefList {
public:
    cls_Ref_RefCliente();
    explicit cls_Ref_RefCliente(std::shared_ptr<Database> db);
};

// The special services: tbl_I_ServicosEspeciais.
class NIMBARA_API cls_Ref_SEspeciais : public RefList {
public:
    cls_Ref_SEspeciais();
    explicit cls_Ref_SEspeciais(std::shared_ptr<Database> db);
};

// The speeds: tbl_E_Velocidade.
class NIMBARA_API cls_Ref_Velocidade : public RefList {
public:
    cls_Ref_Velocidade();
    explicit cls_Ref_Velocidade(std::shared_ptr<Database> db);
};

// The taxation zones: tbl_A_ZonaTaxacao.
class NIMBARA_API cls_Ref_ZTaxacao : public RefList {
public:
    cls_Ref_ZTaxacao();
    explicit cls_Ref_ZTaxacao(std::shared_ptr<Database> db);
    // The active zones, whatever the product.
    Recordset SelectAllActive2(std::string& Produto);

};

}  // namespace nimbara
