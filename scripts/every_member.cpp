// Writes a program that uses all that the kexlib headers export.
//
//     every_member FOLDER -- clang++ -fsyntax-only OPTIONS SOURCE
//
// FOLDER is the absolute path of the folder kexlib with the headers; SOURCE includes them. The output is C++: a
// function for each exported function and for each public or protected member of each exported class and of each
// exported instantiation of a template. The functions are never called, but the linker must find all that they call.
//
// Members are called by their qualified names, so that virtual ones are linked too. A class is a base as well, since
// constructors and destructors of complete and of base objects are two functions each. What has default arguments is
// called with every number of arguments.
#include <clang/AST/RecursiveASTVisitor.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendAction.h>
#include <clang/Sema/Sema.h>
#include <clang/Tooling/Tooling.h>

#include <iostream>
#include <string>
#include <vector>

namespace {

std::string folder;

class Uses : public clang::RecursiveASTVisitor<Uses> {
 public:
  explicit Uses(clang::CompilerInstance& compiler)
      : m_sema(compiler.getSema()), m_policy(compiler.getASTContext().getPrintingPolicy()) {
    m_policy.adjustForCPlusPlus();
    m_policy.PrintCanonicalTypes = true;
  }

  bool shouldVisitTemplateInstantiations() const { return true; }

  bool VisitFunctionDecl(clang::FunctionDecl* function) {
    if (llvm::isa<clang::CXXMethodDecl>(function) || !function->hasAttr<clang::DLLImportAttr>() || !is_ours(function))
      return true;
    if (function->getCanonicalDecl() == function) use(function, "", "::" + function->getQualifiedNameAsString());
    return true;
  }

  bool VisitVarDecl(clang::VarDecl* variable) {
    if (variable->isFileVarDecl() && !variable->isStaticDataMember() && variable->hasAttr<clang::DLLImportAttr>() &&
        is_ours(variable))
      use_address("::" + variable->getQualifiedNameAsString());
    return true;
  }

  bool VisitCXXRecordDecl(clang::CXXRecordDecl* record) {
    if (!record->isThisDeclarationADefinition() || record->isDependentContext() || !is_ours(record)) return true;
    if (!record->hasAttr<clang::DLLImportAttr>()) return true;
    m_sema.ForceDeclarationOfImplicitMembers(record);
    std::cout << "\nnamespace class_" << ++m_count << " {\nusing Class = " << name_of_class(record) << ";\n";
    for (clang::Decl* member : record->decls()) {
      if (member->getAccess() == clang::AS_private) continue;
      if (auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(member)) {
        use_member(record, method);
      } else if (auto* variable = llvm::dyn_cast<clang::VarDecl>(member);
                 variable && variable->getAccess() == clang::AS_public) {
        use_address("Class::" + variable->getNameAsString());
      } else if (llvm::isa<clang::FunctionTemplateDecl>(member)) {
        clang::DiagnosticsEngine& messages = m_sema.getDiagnostics();
        messages.Report(member->getLocation(),
                        messages.getCustomDiagID(clang::DiagnosticsEngine::Error, "which instances do users have?"));
      }
    }
    std::cout << "}\n";
    return true;
  }

  std::size_t count() const { return m_count; }

 private:
  // Whether a header of the library declares it, not of the framework or of a companion.
  bool is_ours(const clang::Decl* declaration) const {
    const clang::SourceManager& sources = m_sema.getSourceManager();
    const std::string file = sources.getFilename(sources.getFileLoc(declaration->getLocation())).str();
    return file.starts_with(folder + "/") && !file.starts_with(folder + "/framework/");
  }

  std::string text_of(clang::QualType type) const { return type.getCanonicalType().getAsString(m_policy); }
  std::string name_of_class(const clang::CXXRecordDecl* record) const {
    return text_of(m_sema.Context.getRecordType(record));
  }

  // "Type<int> p0, Type<char *> p1"
  std::string parameters(const clang::FunctionDecl* function, std::size_t count, std::string first = "") const {
    std::string list = std::move(first);
    for (std::size_t i = 0; i < count; ++i)
      list += (list.empty() ? "" : ", ") + type(function, i) + " p" + std::to_string(i);
    return list;
  }
  // "static_cast<Type<int>&&>(p0), ..."
  std::string arguments(const clang::FunctionDecl* function, std::size_t count) const {
    std::string list;
    for (std::size_t i = 0; i < count; ++i)
      list += (i ? ", " : "") + ("static_cast<" + type(function, i)) + "&&>(p" + std::to_string(i) + ")";
    return list;
  }
  std::string type(const clang::FunctionDecl* function, std::size_t i) const {
    return "Type<" + text_of(function->getParamDecl(static_cast<unsigned>(i))->getType()) + ">";
  }

  std::string next_name() { return "use_" + std::to_string(++m_count); }

  void use_address(const std::string& name) {
    std::cout << "const void* " << next_name() << "() { return &" << name << "; }\n";
  }

  // Calls a function, with every number of arguments that it takes.
  void use(const clang::FunctionDecl* function, const std::string& object, const std::string& callee) {
    for (std::size_t i = function->getMinRequiredArguments(); i <= function->getNumParams(); ++i)
      std::cout << "void " << next_name() << "(" << parameters(function, i, object) << ") { (void)" << callee << "("
                << arguments(function, i) << "); }\n";
  }

  void use_member(const clang::CXXRecordDecl* record, const clang::CXXMethodDecl* method) {
    if (method->isDeleted()) return;
    const bool is_public = method->getAccess() == clang::AS_public;
    if (llvm::isa<clang::CXXConstructorDecl>(method)) {
      for (std::size_t i = method->getMinRequiredArguments(); i <= method->getNumParams(); ++i) {
        const std::string derived = next_name();
        std::cout << "struct " << derived << " : Class { " << derived << "(" << parameters(method, i) << "); };\n"
                  << derived << "::" << derived << "(" << parameters(method, i) << ") : Class(" << arguments(method, i)
                  << ") {}\n";
        if (is_public && !record->isAbstract())
          std::cout << "void " << next_name() << "(" << parameters(method, i, "void* place")
                    << ") { ::new (place) Class(" << arguments(method, i) << "); }\n";
      }
      return;
    }

    std::string name = method->getNameAsString();
    if (llvm::isa<clang::CXXDestructorDecl>(method)) name = "~Class";
    if (auto* conversion = llvm::dyn_cast<clang::CXXConversionDecl>(method))
      name = "operator Type<" + text_of(conversion->getConversionType()) + ">";
    if (!method->isPure()) name = "Class::" + name;
    std::string object = "Class& object";
    if (method->isConst()) object = "const Class& object";
    if (is_public) {
      use(method, method->isStatic() ? "" : object, method->isStatic() ? name : "object." + name);
      return;
    }
    // Only an object of a derived class may use it.
    const std::string derived = next_name();
    const std::size_t count = method->getNumParams();
    const std::string list = parameters(method, count);
    std::cout << "struct " << derived << " : Class { void use(" << list << "); };\nvoid " << derived << "::use(" << list
              << ") { (void)" << (method->isStatic() ? "" : "this->") << name << "(" << arguments(method, count)
              << "); }\n";
  }

  clang::Sema& m_sema;
  clang::PrintingPolicy m_policy;
  std::size_t m_count = 0;
};

class Action : public clang::ASTFrontendAction {
  class Consumer : public clang::ASTConsumer {
   public:
    explicit Consumer(clang::CompilerInstance& compiler) : m_compiler(compiler) {}
    void HandleTranslationUnit(clang::ASTContext& context) override {
      std::cout << "template <class T>\nusing Type = T;\n";
      Uses uses(m_compiler);
      uses.TraverseDecl(context.getTranslationUnitDecl());
      std::cout << "\nint main() { std::puts(\"" << uses.count() << " uses\"); }\n";
    }

   private:
    clang::CompilerInstance& m_compiler;
  };

  std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& compiler, llvm::StringRef) override {
    return std::make_unique<Consumer>(compiler);
  }
};

}  // namespace

int main(int count, char** words) {
  if (count < 4 || std::string(words[2]) != "--") {
    std::cerr << "every_member FOLDER -- clang++ -fsyntax-only OPTIONS SOURCE\n";
    return 2;
  }
  folder = words[1];
  llvm::IntrusiveRefCntPtr<clang::FileManager> files(new clang::FileManager(clang::FileSystemOptions()));
  const std::vector<std::string> command(words + 3, words + count);
  return clang::tooling::ToolInvocation(command, std::make_unique<Action>(), files.get()).run() ? 0 : 1;
}
