// Lists what one translation unit declares and uses of the framework, for scripts/check/framework.
//
//     framework_uses FRAMEWORK -- clang++ -fsyntax-only OPTIONS SOURCE
//
// FRAMEWORK is the absolute path of the folder framework/. Each line of the output has fields separated by tabs. A
// declaration is named by its place: file, line, column and name. Instantiations of a template have the place of the
// pattern that they are made from, so they need no translation.
//
//     declared  PLACE IN KIND        a declaration of the framework, the class around it, "class", "variable" or ""
//     implied   PLACE                the declaration is in use whenever its class is: see is_implied
//     uses      FROM TO              FROM is empty outside the framework
//     overrides METHOD BASE          BASE is empty where the overridden method is outside the framework
//     macro     NAME                 a macro that framework/include defines
//     expands   NAME                 a macro was expanded or asked for with #ifdef or defined()
#include <clang/AST/RecursiveASTVisitor.h>
#include <clang/Frontend/CompilerInstance.h>
#include <clang/Frontend/FrontendAction.h>
#include <clang/Lex/PPCallbacks.h>
#include <clang/Lex/Preprocessor.h>
#include <clang/Tooling/Tooling.h>

#include <algorithm>
#include <iostream>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::string framework;  // with a slash at its end

// Every line once: the same use is found in each instantiation.
void print(const std::string& line) {
  static std::set<std::string> printed;
  if (printed.insert(line).second) std::cout << line << '\n';
}

std::string file_of(const clang::SourceManager& sources, clang::SourceLocation location) {
  return sources.getFilename(sources.getFileLoc(location)).str();
}

bool is_in_framework(std::string_view file, std::string_view folder = "") {
  return file.starts_with(framework + std::string(folder));
}

class Uses : public clang::RecursiveASTVisitor<Uses> {
  using Base = clang::RecursiveASTVisitor<Uses>;

 public:
  explicit Uses(clang::ASTContext& context) : m_sources(context.getSourceManager()) {}

  bool shouldVisitTemplateInstantiations() const { return true; }
  bool shouldVisitImplicitCode() const { return true; }

  bool TraverseDecl(clang::Decl* declaration) {
    if (!declaration) return true;
    // The declarations of the system use nothing of the framework; the standard library's templates do.
    if (m_sources.isInSystemHeader(declaration->getLocation()) && !llvm::isa<clang::NamespaceDecl>(declaration) &&
        declaration->getDeclContext()->isTranslationUnit() && !llvm::isa<clang::ClassTemplateDecl>(declaration))
      return true;
    const clang::Decl* named = nameable(declaration);
    if (!named) return Base::TraverseDecl(declaration);
    std::string outer = m_from;
    m_from = place(named);
    note(named);
    bool result = Base::TraverseDecl(declaration);
    m_from = std::move(outer);
    return result;
  }

  bool VisitDeclRefExpr(clang::DeclRefExpr* expression) { return use(expression->getDecl()); }
  bool VisitMemberExpr(clang::MemberExpr* expression) { return use(expression->getMemberDecl()); }
  bool VisitCXXConstructExpr(clang::CXXConstructExpr* expression) {
    const clang::CXXConstructorDecl* constructor = expression->getConstructor();
    if (auto inherited = constructor->getInheritedConstructor()) use(inherited.getConstructor());
    return use(constructor);
  }
  bool VisitCXXInheritedCtorInitExpr(clang::CXXInheritedCtorInitExpr* expression) {
    return use(expression->getConstructor());
  }
  bool VisitInitListExpr(clang::InitListExpr* list) {
    if (const clang::RecordDecl* record = list->getType()->getAsRecordDecl())
      for (const clang::FieldDecl* field : record->fields()) use(field);
    return true;
  }
  bool TraverseConstructorInitializer(clang::CXXCtorInitializer* initializer) {
    if (initializer->isAnyMemberInitializer() && initializer->isWritten()) use(initializer->getAnyMember());
    return Base::TraverseConstructorInitializer(initializer);
  }
  bool VisitUsingDecl(clang::UsingDecl* declaration) {
    for (const clang::UsingShadowDecl* shadow : declaration->shadows()) use(shadow->getTargetDecl());
    return true;
  }
  bool VisitTypedefTypeLoc(clang::TypedefTypeLoc type) { return use(type.getTypedefNameDecl()); }
  bool VisitTagTypeLoc(clang::TagTypeLoc type) { return use(type.getDecl()); }
  bool VisitTemplateSpecializationTypeLoc(clang::TemplateSpecializationTypeLoc type) {
    const clang::TemplateDecl* declaration = type.getTypePtr()->getTemplateName().getAsTemplateDecl();
    return declaration ? use(declaration) : true;
  }

 private:
  // The declaration that stands for another one in the lists; null where it has no line of its own in them.
  static const clang::NamedDecl* nameable(const clang::Decl* declaration) {
    if (auto* constant = llvm::dyn_cast<clang::EnumConstantDecl>(declaration))
      declaration = llvm::cast<clang::EnumDecl>(constant->getDeclContext());
    if (auto* pattern = llvm::dyn_cast<clang::TemplateDecl>(declaration)) declaration = pattern->getTemplatedDecl();
    auto* named = llvm::dyn_cast_or_null<clang::NamedDecl>(declaration);
    if (!named || named->getDeclContext()->isFunctionOrMethod() || named->getParentFunctionOrMethod()) return nullptr;
    if (llvm::isa<clang::CXXDeductionGuideDecl>(named)) return nullptr;
    if (auto* record = llvm::dyn_cast<clang::CXXRecordDecl>(named); record && record->isLambda()) return nullptr;
    bool counts = llvm::isa<clang::FunctionDecl>(named) || llvm::isa<clang::FieldDecl>(named) ||
                  llvm::isa<clang::VarDecl>(named) || llvm::isa<clang::TypedefNameDecl>(named) ||
                  llvm::isa<clang::TagDecl>(named);
    return counts && !llvm::isa<clang::ParmVarDecl>(named) ? named : nullptr;
  }

  // Empty where it is no part of the framework.
  std::string place(const clang::Decl* declaration) const {
    auto* named = llvm::cast<clang::NamedDecl>(declaration->getCanonicalDecl());
    clang::PresumedLoc at = m_sources.getPresumedLoc(m_sources.getFileLoc(named->getLocation()));
    if (at.isInvalid() || !is_in_framework(at.getFilename())) return "";
    return std::string(at.getFilename()).substr(framework.size()) + ":" + std::to_string(at.getLine()) + ":" +
           std::to_string(at.getColumn()) + ":" + name(named);
  }

  // The same for a pattern and its instantiations.
  static std::string name(const clang::NamedDecl* named) {
    if (llvm::isa<clang::CXXConversionDecl>(named)) return "operator";
    auto* around = llvm::dyn_cast<clang::NamedDecl>(named->getDeclContext());
    if (llvm::isa<clang::CXXConstructorDecl>(named)) return around->getNameAsString();
    if (llvm::isa<clang::CXXDestructorDecl>(named)) return "~" + around->getNameAsString();
    return named->getNameAsString();
  }

  // Special member functions come with the class, and so does what a macro declares: the macro itself needs a user.
  static bool is_implied(const clang::NamedDecl* named) {
    if (named->isImplicit() || llvm::isa<clang::CXXDestructorDecl>(named) || named->getLocation().isMacroID())
      return true;
    if (auto* function = llvm::dyn_cast<clang::FunctionDecl>(named); function && function->isDeleted()) return true;
    if (auto* constructor = llvm::dyn_cast<clang::CXXConstructorDecl>(named))
      return constructor->isCopyOrMoveConstructor();
    auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(named);
    return method && (method->isCopyAssignmentOperator() || method->isMoveAssignmentOperator());
  }

  void note(const clang::Decl* declaration) {
    auto* named = llvm::cast<clang::NamedDecl>(declaration);
    std::string own = place(named);
    auto* around = llvm::dyn_cast<clang::NamedDecl>(named->getDeclContext());
    if (named->getFriendObjectKind()) around = llvm::dyn_cast<clang::NamedDecl>(named->getLexicalDeclContext());
    bool in_class = around && llvm::isa<clang::CXXRecordDecl>(around);
    if (!own.empty()) {
      std::string outer = in_class ? place(around) : "";
      if (outer == own) return;  // the name of the class inside itself
      auto* record = llvm::dyn_cast<clang::CXXRecordDecl>(named);
      const clang::CXXRecordDecl* definition = record ? record->getDefinition() : nullptr;
      bool is_class = definition && is_in_framework(file_of(m_sources, definition->getLocation()), "include/");
      print("declared\t" + own + "\t" + outer + "\t" +
            (is_class                           ? "class"
             : llvm::isa<clang::VarDecl>(named) ? "variable"
                                                : ""));
      if (is_implied(named)) print("implied\t" + own);
    }
    if (auto* method = llvm::dyn_cast<clang::CXXMethodDecl>(named))
      for (const clang::CXXMethodDecl* base : method->overridden_methods()) {
        std::string overridden = place(base);
        if (!own.empty())
          print("overrides\t" + own + "\t" + overridden);
        else if (!overridden.empty())
          print("uses\t\t" + overridden);
      }
    auto* derived = llvm::dyn_cast_or_null<clang::CXXRecordDecl>(in_class ? around : nullptr);
    if (own.empty() && derived && derived->hasDefinition()) note_hidden(derived->getDefinition(), named);
  }

  // A member of a user's class that hides one of the framework's replaces it: CPropertyPageImpl calls T::OnApply.
  void note_hidden(const clang::CXXRecordDecl* derived, const clang::NamedDecl* member) {
    if (!llvm::isa<clang::CXXMethodDecl>(member) || !member->getIdentifier()) return;
    derived->forallBases([&](const clang::CXXRecordDecl* base) {
      for (const clang::NamedDecl* hidden : base->lookup(member->getDeclName()))
        if (std::string name = place(hidden); !name.empty()) print("uses\t\t" + name);
      return true;
    });
  }

  bool use(const clang::Decl* declaration) {
    const clang::NamedDecl* named = nameable(declaration);
    if (!named) return true;
    std::string used = place(named);
    if (!used.empty() && used != m_from) print("uses\t" + m_from + "\t" + used);
    return true;
  }

  const clang::SourceManager& m_sources;
  std::string m_from;
};

class Macros : public clang::PPCallbacks {
 public:
  explicit Macros(const clang::SourceManager& sources) : m_sources(sources) {}

  void MacroDefined(const clang::Token& name, const clang::MacroDirective*) override {
    if (is_in_framework(file_of(m_sources, name.getLocation()), "include/")) print("macro\t" + spelling(name));
  }
  void MacroExpands(const clang::Token& name, const clang::MacroDefinition& macro, clang::SourceRange,
                    const clang::MacroArgs*) override {
    expands(name, macro);
  }
  void Ifdef(clang::SourceLocation, const clang::Token& name, const clang::MacroDefinition& macro) override {
    expands(name, macro);
  }
  void Defined(const clang::Token& name, const clang::MacroDefinition& macro, clang::SourceRange) override {
    expands(name, macro);
  }

 private:
  static std::string spelling(const clang::Token& name) { return name.getIdentifierInfo()->getName().str(); }
  void expands(const clang::Token& name, const clang::MacroDefinition& macro) {
    const clang::MacroInfo* definition = macro.getMacroInfo();
    if (definition && is_in_framework(file_of(m_sources, definition->getDefinitionLoc()), "include/"))
      print("expands\t" + spelling(name));
  }

  const clang::SourceManager& m_sources;
};

class Action : public clang::ASTFrontendAction {
  class Consumer : public clang::ASTConsumer {
    void HandleTranslationUnit(clang::ASTContext& context) override {
      Uses(context).TraverseDecl(context.getTranslationUnitDecl());
    }
  };

  std::unique_ptr<clang::ASTConsumer> CreateASTConsumer(clang::CompilerInstance& compiler, llvm::StringRef) override {
    compiler.getPreprocessor().addPPCallbacks(std::make_unique<Macros>(compiler.getSourceManager()));
    return std::make_unique<Consumer>();
  }
};

}  // namespace

int main(int count, char** arguments) {
  std::vector<std::string> words(arguments + 1, arguments + count);
  if (words.size() < 3 || words[1] != "--") {
    std::cerr << "framework_uses FRAMEWORK -- clang++ -fsyntax-only OPTIONS SOURCE\n";
    return 2;
  }
  framework = words[0] + "/";
  words.erase(words.begin(), words.begin() + 2);
  llvm::IntrusiveRefCntPtr<clang::FileManager> files(new clang::FileManager(clang::FileSystemOptions()));
  return clang::tooling::ToolInvocation(words, std::make_unique<Action>(), files.get()).run() ? 0 : 1;
}
