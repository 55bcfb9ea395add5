// The records (User, SavedQuery) with dict conversion, the call envelope (Envelope) with its
// parameters as a dict, and Base64 on bytes.
#include "records_binding.h"

#include <string>

#include "persistence/c_marshall.h"
#include "persistence/cls_base64.h"
#include "persistence/cls_qsom_dm.h"
#include "persistence/cls_user.h"
#include "property_table.h"

namespace brix::python {
namespace {

const Properties<clsUser>& UserProperties() {
  static const Properties<clsUser> properties = [] {
    using U = clsUser;
    Properties<U> p;
    AddProperty(p, "ID", &U::ID, &U::SetID);
    AddProperty(p, "UserName", &U::UserName, &U::SetUserName);
    AddProperty(p, "Parola", &U::Parola, &U::SetParola);
    AddProperty(p, "FullName", &U::FullName, &U::SetFullName);
    AddProperty(p, "JobTitle", &U::JobTitle, &U::SetJobTitle);
    AddProperty(p, "EMail", &U::EMail, &U::SetEMail);
    AddProperty(p, "Department", &U::Department, &U::SetDepartment);
    AddProperty(p, "Phone", &U::Phone, &U::SetPhone);
    AddProperty(p, "MobilePhone", &U::MobilePhone, &U::SetMobilePhone);
    AddProperty(p, "GroupName", &U::GroupName, &U::SetGroupName);
    AddProperty(p, "GroupPriority", &U::GroupPriority, &U::SetGroupPriority);
    AddProperty(p, "UserApplication", &U::UserApplication, &U::SetUserApplication);
    AddProperty(p, "UserHDDSerial", &U::UserHDDSerial, &U::SetUserHDDSerial);
    AddProperty(p, "UserIP", &U::UserIP, &U::SetUserIP);
    AddProperty(p, "UserSession", &U::UserSession, &U::SetUserSession);
    AddProperty(p, "UserLanguage", &U::UserLanguage, &U::SetUserLanguage);
    AddProperty(p, "UserLayout", &U::UserLayout, &U::SetUserLayout);
    AddProperty(p, "UserDefSTR1", &U::UserDefSTR1, &U::SetUserDefSTR1);
    AddProperty(p, "UserDefSTR2", &U::UserDefSTR2, &U::SetUserDefSTR2);
    AddProperty(p, "UserDefSTR3", &U::UserDefSTR3, &U::SetUserDefSTR3);
    AddProperty(p, "UserDefSTR4", &U::UserDefSTR4, &U::SetUserDefSTR4);
    AddProperty(p, "UserDefSTR5", &U::UserDefSTR5, &U::SetUserDefSTR5);
    AddProperty(p, "strASISTENT0", &U::strASISTENT0, &U::SetstrASISTENT0);
    AddProperty(p, "strASISTENT1", &U::strASISTENT1, &U::SetstrASISTENT1);
    AddProperty(p, "strASISTENT2", &U::strASISTENT2, &U::SetstrASISTENT2);
    AddProperty(p, "strASISTENT3", &U::strASISTENT3, &U::SetstrASISTENT3);
    AddProperty(p, "strASISTENT4", &U::strASISTENT4, &U::SetstrASISTENT4);
    AddProperty(p, "strASISTENT5", &U::strASISTENT5, &U::SetstrASISTENT5);
    AddProperty(p, "CanAccessReports", &U::CanAccessReports, &U::SetCanAccessReports);
    AddProperty(p, "CanModifyLookup", &U::CanModifyLookup, &U::SetCanModifyLookup);
    AddProperty(p, "CanModifyUsers", &U::CanModifyUsers, &U::SetCanModifyUsers);
    AddProperty(p, "CanSwitchUsers", &U::CanSwitchUsers, &U::SetCanSwitchUsers);
    AddProperty(p, "CanAccessFinancialData", &U::CanAccessFinancialData,
                &U::SetCanAccessFinancialData);
    AddProperty(p, "DMAccessRights", &U::DMAccessRights, &U::SetDMAccessRights);
    return p;
  }();
  return properties;
}

const Properties<clsQSOM_DM>& SavedQueryProperties() {
  static const Properties<clsQSOM_DM> properties = [] {
    using S = clsQSOM_DM;
    Properties<S> p;
    AddProperty(p, "ID", &S::ID, &S::SetID);
    AddProperty(p, "Name", &S::Name, &S::SetName);
    AddProperty(p, "Category", &S::Category, &S::SetCategory);
    AddProperty(p, "Description", &S::Description, &S::SetDescription);
    AddProperty(p, "UsedFor", &S::UsedFor, &S::SetUsedFor);
    AddProperty(p, "QueryDef", &S::QueryDef, &S::SetQueryDef);
    AddProperty(p, "IsEditable", &S::IsEditable, &S::SetIsEditable);
    AddProperty(p, "AccessRights", &S::AccessRights, &S::SetAccessRights);
    AddProperty(p, "CreatDe", &S::CreatDe, &S::SetCreatDe);
    AddProperty(p, "CreatData", &S::CreatData, &S::SetCreatData);
    AddProperty(p, "CreatOra", &S::CreatOra, &S::SetCreatOra);
    AddProperty(p, "ModificatDe", &S::ModificatDe, &S::SetModificatDe);
    AddProperty(p, "ModificatData", &S::ModificatData, &S::SetModificatData);
    AddProperty(p, "ModificatOra", &S::ModificatOra, &S::SetModificatOra);
    AddProperty(p, "G6", &S::G6, &S::SetG6);
    AddProperty(p, "G1", &S::G1, &S::SetG1);
    AddProperty(p, "G1D", &S::G1D, &S::SetG1D);
    AddProperty(p, "G2", &S::G2, &S::SetG2);
    AddProperty(p, "G2D", &S::G2D, &S::SetG2D);
    AddProperty(p, "G3", &S::G3, &S::SetG3);
    AddProperty(p, "G3D", &S::G3D, &S::SetG3D);
    AddProperty(p, "G4", &S::G4, &S::SetG4);
    AddProperty(p, "G4D", &S::G4D, &S::SetG4D);
    AddProperty(p, "G5", &S::G5, &S::SetG5);
    AddProperty(p, "G5D", &S::G5D, &S::SetG5D);
    AddProperty(p, "UseGrupari", &S::UseGrupari, &S::SetUseGrupari);
    AddProperty(p, "UseIerarhic", &S::UseIerarhic, &S::SetUseIerarhic);
    AddProperty(p, "UseTematica", &S::UseTematica, &S::SetUseTematica);
    AddProperty(p, "UseTipAct", &S::UseTipAct, &S::SetUseTipAct);
    AddProperty(p, "UseTipPub", &S::UseTipPub, &S::SetUseTipPub);
    AddProperty(p, "CodSectiune", &S::CodSectiune, &S::SetCodSectiune);
    AddProperty(p, "Cod_DocStart", &S::Cod_DocStart, &S::SetCod_DocStart);
    AddProperty(p, "Cod_DocCrt", &S::Cod_DocCrt, &S::SetCod_DocCrt);
    AddProperty(p, "Cod_DocEnd", &S::Cod_DocEnd, &S::SetCod_DocEnd);
    AddProperty(p, "CssFile", &S::CssFile, &S::SetCssFile);
    AddProperty(p, "RpxDesign", &S::RpxDesign, &S::SetRpxDesign);
    return p;
  }();
  return properties;
}

const Properties<cMarshall>& EnvelopeProperties() {
  static const Properties<cMarshall> properties = [] {
    using E = cMarshall;
    Properties<E> p;
    AddProperty(p, "ClassName", &E::ClassName, &E::SetClassName);
    AddProperty(p, "ProcedureName", &E::ProcedureName, &E::SetProcedureName);
    AddProperty(p, "Session", &E::Session, &E::SetSession);
    AddProperty(p, "ErrorNo", &E::ErrorNo, &E::SetErrorNo);
    AddProperty(p, "ErrorDescription", &E::ErrorDescription, &E::SetErrorDescription);
    AddProperty(p, "ErrorSource", &E::ErrorSource, &E::SetErrorSource);
    AddProperty(p, "Retval", &E::Retval, &E::SetRetval);
    AddProperty(p, "bMakeCompress", &E::bMakeCompress, &E::SetbMakeCompress);
    return p;
  }();
  return properties;
}

// A record class: keyword construction, properties, to_dict / from_dict, equality by contents.
template <class Record>
void BindRecord(py::module_& m, const char* name, const Properties<Record>& properties,
                const char* doc) {
  py::class_<Record, std::shared_ptr<Record>> cls(m, name, doc);
  BindProperties(cls, properties);
  BindKeywordConstructor(cls, properties, name);
  cls.def("to_dict", [&properties](Record& r) { return PropertyDict(r, properties); })
      .def_static(
          "from_dict",
          [&properties, name](const py::dict& values) {
            std::shared_ptr<Record> record = Record::Create();
            SetProperties(*record, properties, values, name);
            return record;
          },
          py::arg("values"))
      .def("__eq__",
           [&properties](Record& a, py::handle b) {
             if (!py::isinstance<Record>(b)) return false;
             return PropertyDict(a, properties).equal(PropertyDict(*b.cast<Record*>(), properties));
           })
      .def("__repr__", [&properties, name](Record& r) {
        return std::string(name) + "(**" +
               py::repr(PropertyDict(r, properties)).template cast<std::string>() + ")";
      });
  cls.attr("__hash__") = py::none();
}

py::bytes ToBytes(const ByteArray& bytes) {
  return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// One clsBase64 operation from bytes to bytes.
template <class Operation>
py::bytes Base64Call(py::handle data, Operation operation) {
  ByteArray in = BytesFrom(data);
  ByteArray out;
  {
    py::gil_scoped_release release;
    operation(*clsBase64::Create(), in, out);
  }
  return ToBytes(out);
}

void BindBase64(py::module_& m) {
  py::class_<clsBase64, std::shared_ptr<clsBase64>>(m, "Base64",
                                                    "Base64 on bytes; every method is static.")
      .def_static(
          "encode",
          [](py::handle data, std::int32_t span) {
            return Base64Call(data, [span](clsBase64& codec, const ByteArray& in, ByteArray& out) {
              codec.EncodeB64(in, out);
              if (span != 0) codec.Span(span, ByteArray(out), out);
            });
          },
          py::arg("data"), py::arg("span") = 0)
      .def_static(
          "decode",
          [](py::handle data) {
            return Base64Call(data, [](clsBase64& codec, const ByteArray& in, ByteArray& out) {
              ByteArray joined;
              codec.Unspan(in, joined);
              codec.DecodeB64(joined, out);
            });
          },
          py::arg("data"))
      .def_static(
          "span",
          [](py::handle data, std::int32_t chars_per_line) {
            return Base64Call(
                data, [chars_per_line](clsBase64& codec, const ByteArray& in, ByteArray& out) {
                  codec.Span(chars_per_line, in, out);
                });
          },
          py::arg("data"), py::arg("chars_per_line"))
      .def_static(
          "unspan",
          [](py::handle data) {
            return Base64Call(data, [](clsBase64& codec, const ByteArray& in, ByteArray& out) {
              codec.Unspan(in, out);
            });
          },
          py::arg("data"))
      .def_static(
          "text_to_bytes",
          [](const std::string& text) {
            ByteArray out;
            clsBase64::Create()->Str2ByteArray(text, out);
            return ToBytes(out);
          },
          py::arg("text"));
}

py::dict Parameters(const cMarshall& envelope) {
  py::dict params;
  for (const std::string& name : envelope.ParamNames()) {
    params[Text(name)] = FromVariant(envelope.ReadParam(name));
  }
  return params;
}

void BindEnvelope(py::module_& m) {
  py::class_<cMarshall, std::shared_ptr<cMarshall>> cls(
      m, "Envelope", "A remote call and its answer carried as bytes, optionally compressed.");
  BindProperties(cls, EnvelopeProperties());
  cls.def(py::init([](py::kwargs keywords) {
       std::shared_ptr<cMarshall> envelope = cMarshall::Create();
       py::object params = keywords.attr("pop")("params", py::none());
       SetProperties(*envelope, EnvelopeProperties(), keywords, "Envelope");
       if (!params.is_none()) {
         for (auto [name, value] : py::dict(params)) {
           envelope->AddParam(py::str(name).cast<std::string>(), ToVariant(value));
         }
       }
       return envelope;
     }))
      .def_static(
          "from_bytes",
          [](py::handle data, bool compressed) {
            std::shared_ptr<cMarshall> envelope = cMarshall::Create();
            envelope->SetbMakeCompress(compressed);
            ByteArray bytes = BytesFrom(data);
            py::gil_scoped_release release;
            envelope->SetContents(bytes);
            return envelope;
          },
          py::arg("data"), py::kw_only(), py::arg("compressed") = false)
      .def("to_bytes",
           [](const cMarshall& e) {
             ByteArray bytes;
             {
               py::gil_scoped_release release;
               bytes = e.GetContents();
             }
             return ToBytes(bytes);
           })
      .def("__bytes__", [](const cMarshall& e) { return ToBytes(e.GetContents()); })
      .def_property_readonly("params", &Parameters)
      .def(
          "add_param",
          [](cMarshall& e, const std::string& name, py::handle value) {
            e.AddParam(name, ToVariant(value));
          },
          py::arg("name"), py::arg("value"))
      .def(
          "read_param",
          [](const cMarshall& e, const std::string& name) {
            return FromVariant(e.ReadParam(name));
          },
          py::arg("name"))
      .def("clear", &cMarshall::Clear);
}

}  // namespace

void BindRecords(py::module_& m) {
  BindRecord(m, "User", UserProperties(), "The user record (clsUser).");
  BindRecord(m, "SavedQuery", SavedQueryProperties(), "The saved query record (clsQSOM_DM).");
  BindEnvelope(m);
  BindBase64(m);
}

}  // namespace brix::python
