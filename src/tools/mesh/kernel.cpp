#include "tools/mesh/kernel.h"

#include "tools/mesh/face_mesh.h"

#include <Bnd_Box.hxx>
#include <BRep_Builder.hxx>
#include <BRep_Tool.hxx>
#include <BRepBndLib.hxx>
#include <BRepMesh_IncrementalMesh.hxx>
#include <IMeshTools_Parameters.hxx>
#include <Interface_Check.hxx>
#include <Message.hxx>
#include <Message_Messenger.hxx>
#include <OSD.hxx>
#include <OSD_Signal.hxx>
#include <Precision.hxx>
#include <Standard_ErrorHandler.hxx>
#include <Standard_Failure.hxx>
#include <Standard_OutOfMemory.hxx>
#include <STEPControl_ActorRead.hxx>
#include <STEPControl_Reader.hxx>
#include <StepData_GlobalFactors.hxx>
#include <StepData_StepModel.hxx>
#include <StepGeom_Surface.hxx>
#include <StepShape_ClosedShell.hxx>
#include <StepShape_ConnectedFaceSet.hxx>
#include <StepShape_Face.hxx>
#include <StepShape_HArray1OfFace.hxx>
#include <StepShape_HArray1OfShell.hxx>
#include <StepShape_OpenShell.hxx>
#include <StepShape_OrientedFace.hxx>
#include <StepShape_ShapeRepresentation.hxx>
#include <StepShape_Shell.hxx>
#include <StepShape_ShellBasedSurfaceModel.hxx>
#include <TCollection_HAsciiString.hxx>
#include <TopExp_Explorer.hxx>
#include <TopoDS.hxx>
#include <TopoDS_Compound.hxx>
#include <Transfer_Binder.hxx>
#include <Transfer_TransientProcess.hxx>
#include <TransferBRep.hxx>

#include <cxxabi.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <exception>
#include <istream>
#include <new>
#include <numbers>
#include <streambuf>
#include <typeinfo>
#include <unordered_map>
#include <vector>

namespace tarnwick::tools {

namespace {

// Bytes that are in memory as a stream.
class TextStream : public std::streambuf {
public:
    explicit TextStream(const std::string& text) {
        char* const begin = const_cast<char*>(text.data());
        setg(begin, begin, begin + text.size());
    }
};

// Does `work`, and returns in words what it threw; empty where it threw nothing. A signal in the kernel
// becomes an exception here, so this function must own nothing that needs a destructor.
template <class Work>
std::string Caught(const Work& work) {
    try {
        OCC_CATCH_SIGNALS
        work();
    } catch (const OSD_Signal&) {
        return "the geometry kernel crashed";
    } catch (const Standard_OutOfMemory&) {
        return "out of memory";
    } catch (const Standard_Failure& failure) {
        const char* const words = failure.GetMessageString();
        const std::string name = failure.DynamicType()->Name();
        return words != nullptr && *words != '\0' ? name + ": " + words : name;
    } catch (const std::bad_alloc&) { return "out of memory"; } catch (const std::exception& exception) {
        return exception.what();
    } catch (...) { return "unknown exception"; }
    return {};
}

// A box that is larger than this times the spread of the vertices comes from a damaged number.
constexpr double kMostDiagonal = 1e4;
constexpr std::size_t kEnoughVertices = 24;
constexpr std::size_t kPartOfOuterVertices = 10;

using Entity = opencascade::handle<Standard_Transient>;
using FaceNumbers = std::unordered_map<const TopoDS_TShape*, std::uint64_t>;

struct KernelBody {
    std::uint64_t entity = 0;
    TopoDS_Shape shape;
    FaceNumbers numbers; // of the shape's faces
};

// One text with its bodies.
class KernelRun {
public:
    KernelRun(const MeshRequest& request, MeshListener* listener) : request_(request), listener_(*listener) {}

    MeshAnswer Run() {
        listener_.Tell({MeshStage::kReading, 0});
        const std::string problem = Caught([this] { Read(); });
        if (model_.IsNull() || representation_.IsNull()) {
            answer_.problems.push_back({0, problem.empty() ? "the kernel can't read the text" : problem});
            return std::move(answer_);
        }
        for (const std::uint64_t number : request_.bodies) { MakeBody(number); }
        FindDiagonal();
        if (request_.isEach) {
            MeshEach();
        } else {
            MeshAll();
        }
        return std::move(answer_);
    }

private:
    void Read() {
        TextStream buffer(request_.text);
        std::istream stream(&buffer);
        if (reader_.ReadStream("bodies.stp", stream) != IFSelect_RetDone) { return; }
        model_ = reader_.StepModel();
        for (int i = 1; i <= model_->NbEntities(); ++i) {
            const Entity& entity = model_->Value(i);
            if (entity->IsKind(STANDARD_TYPE(StepShape_ShapeRepresentation))) {
                representation_ = Handle(StepShape_ShapeRepresentation)::DownCast(entity);
            }
            byNumber_.emplace(static_cast<std::uint64_t>(model_->IdentLabel(entity)), entity);
        }
    }

    void MakeBody(std::uint64_t number) {
        listener_.Tell({MeshStage::kTransfer, number});
        const auto found = byNumber_.find(number);
        if (found == byNumber_.end()) {
            answer_.problems.push_back({number, "the kernel doesn't know the entity"});
            return;
        }
        KernelBody body;
        body.entity = number;
        std::string problem = Caught([&] { Transfer(found->second, &body); });
        if (problem.empty() && body.shape.IsNull()) { problem = WordsOfProcess(); }
        if (!problem.empty()) {
            answer_.problems.push_back({number, problem});
            return;
        }
        bodies_.push_back(std::move(body));
    }

    // The kernel makes no shape of a shell or face by itself, but does of a model that has it.
    static Entity AsModel(const Entity& entity) {
        Handle(StepShape_ConnectedFaceSet) set = Handle(StepShape_ConnectedFaceSet)::DownCast(entity);
        if (const auto face = Handle(StepShape_Face)::DownCast(entity); !face.IsNull()) {
            const Handle(StepShape_HArray1OfFace) faces = new StepShape_HArray1OfFace(1, 1, face);
            set = new StepShape_ConnectedFaceSet;
            set->Init(new TCollection_HAsciiString(""), faces);
        }
        if (set.IsNull()) { return entity; }
        StepShape_Shell shell;
        if (set->IsKind(STANDARD_TYPE(StepShape_OpenShell)) ||
            set->IsKind(STANDARD_TYPE(StepShape_ClosedShell))) {
            shell.SetValue(set);
        } else {
            const Handle(StepShape_OpenShell) open = new StepShape_OpenShell;
            open->Init(new TCollection_HAsciiString(""), set->CfsFaces());
            shell.SetValue(open);
        }
        const Handle(StepShape_HArray1OfShell) shells = new StepShape_HArray1OfShell(1, 1, shell);
        const Handle(StepShape_ShellBasedSurfaceModel) model = new StepShape_ShellBasedSurfaceModel;
        model->Init(new TCollection_HAsciiString(""), shells);
        return Entity(model);
    }

    // Each body has a transfer process of its own: what one leaves when it throws doesn't harm the next, and
    // its faces are told from those of others that share the entity.
    void Transfer(const Entity& entity, KernelBody* body) {
        process_ = new Transfer_TransientProcess(1000);
        process_->SetModel(model_);
        const Handle(STEPControl_ActorRead) actor = new STEPControl_ActorRead;
        process_->SetActor(actor);
        // The kernel keeps units for the whole process, also those of the text before.
        actor->ResetUnits();
        actor->PrepareUnits(representation_, process_);
        unit_ = StepData_GlobalFactors::Intance().LengthFactor();
        const Handle(Transfer_Binder) binder = actor->TransferShape(AsModel(entity), process_);
        if (binder.IsNull()) { return; }
        const TopoDS_Shape shape = TransferBRep::ShapeResult(binder);
        NumberFaces(&body->numbers);
        body->shape = shape;
    }

    void NumberFaces(FaceNumbers* numbers) {
        for (int i = 1; i <= process_->NbMapped(); ++i) {
            const Entity& entity = process_->Mapped(i);
            const bool isFace = entity->IsKind(STANDARD_TYPE(StepShape_Face));
            if (!isFace && !entity->IsKind(STANDARD_TYPE(StepGeom_Surface))) { continue; }
            const TopoDS_Shape shape = TransferBRep::ShapeResult(process_->MapItem(i));
            if (shape.IsNull()) { continue; }
            const int label = model_->IdentLabel(entity);
            if (label <= 0) { continue; }
            for (TopExp_Explorer faces(shape, TopAbs_FACE); faces.More(); faces.Next()) {
                const TopoDS_TShape* const face = faces.Current().TShape().get();
                // The face says more than the surface that it lies in.
                if (isFace) {
                    (*numbers)[face] = static_cast<std::uint64_t>(label);
                } else {
                    numbers->emplace(face, static_cast<std::uint64_t>(label));
                }
            }
        }
    }

    // What the kernel noted while it made nothing.
    std::string WordsOfProcess() const {
        for (int i = 1; i <= process_->NbMapped(); ++i) {
            const Handle(Transfer_Binder) binder = process_->MapItem(i);
            if (binder.IsNull()) { continue; }
            const Handle(Interface_Check) check = binder->Check();
            if (!check.IsNull() && check->HasFailed()) { return check->CFail(1); }
        }
        return "the kernel makes no shape of it";
    }

    Bnd_Box BoxOfAll() const {
        Bnd_Box box;
        for (const KernelBody& body : bodies_) {
            Bnd_Box own;
            Caught([&] { BRepBndLib::Add(body.shape, own, Standard_False); });
            if (own.IsVoid()) { continue; }
            if (own.IsOpen()) {
                if (!own.HasFinitePart()) { continue; }
                own = own.FinitePart();
            }
            box.Add(own);
        }
        return box;
    }

    // How far apart all vertices but the outermost few are, in millimetres; 0 where there aren't enough.
    double SpreadOfVertices() const {
        std::array<std::vector<double>, 3> coordinates;
        for (const KernelBody& body : bodies_) {
            for (TopExp_Explorer vertices(body.shape, TopAbs_VERTEX); vertices.More(); vertices.Next()) {
                const gp_Pnt point = BRep_Tool::Pnt(TopoDS::Vertex(vertices.Current()));
                for (int axis = 0; axis < 3; ++axis) {
                    coordinates[static_cast<std::size_t>(axis)].push_back(point.Coord(axis + 1));
                }
            }
        }
        const std::size_t count = coordinates[0].size();
        if (count < kEnoughVertices) { return 0; }
        const std::size_t outer = count / kPartOfOuterVertices;
        double square = 0;
        for (std::vector<double>& all : coordinates) {
            const auto low = all.begin() + static_cast<std::ptrdiff_t>(outer);
            const auto high = all.begin() + static_cast<std::ptrdiff_t>(count - 1 - outer);
            std::nth_element(all.begin(), low, all.end());
            std::nth_element(low, high, all.end());
            square += (*high - *low) * (*high - *low);
        }
        return std::sqrt(square);
    }

    // The diagonal of the box of all bodies, in millimetres. Control points and tolerances may widen the box.
    // A damaged number would widen it so far that the deflection left no triangle, so the spread is taken
    // then.
    double Diagonal() const {
        const Bnd_Box box = BoxOfAll();
        const double diagonal = box.IsVoid() ? 0 : std::sqrt(box.SquareExtent());
        const double spread = SpreadOfVertices();
        const bool isDamaged = !std::isfinite(diagonal) || diagonal > kMostDiagonal * spread;
        return isDamaged && spread > 0 && std::isfinite(spread) ? spread : diagonal;
    }

    void FindDiagonal() {
        diagonal_ = request_.diagonal * unit_;
        if (!(diagonal_ > 0)) { diagonal_ = Diagonal(); }
        if (!std::isfinite(diagonal_)) { diagonal_ = 0; }
        answer_.diagonal = diagonal_ / unit_;
    }

    // In words what went wrong, or empty.
    std::string Mesh(const TopoDS_Shape& shape) const {
        IMeshTools_Parameters parameters;
        parameters.Deflection = std::max(request_.deflection * diagonal_, 2 * Precision::Confusion());
        parameters.Angle = std::clamp(request_.angle, 0.1, 90.0) * std::numbers::pi / 180;
        parameters.MeshAlgo = request_.algorithm == MeshAlgorithm::kDelabella
                                  ? IMeshTools_MeshAlgoType_Delabella
                                  : IMeshTools_MeshAlgoType_Watson;
        return Caught([&] { BRepMesh_IncrementalMesh(shape, parameters); });
    }

    void MeshAll() {
        listener_.Tell({MeshStage::kMeshing, 0});
        TopoDS_Compound all;
        const BRep_Builder builder;
        builder.MakeCompound(all);
        for (const KernelBody& body : bodies_) { builder.Add(all, body.shape); }
        const std::string problem = Mesh(all);
        if (!problem.empty()) { answer_.problems.push_back({0, problem}); }
        for (const KernelBody& body : bodies_) { answer_.bodies.push_back(Collected(body)); }
    }

    void MeshEach() {
        for (const KernelBody& body : bodies_) {
            listener_.Tell({MeshStage::kMeshing, body.entity});
            MeshAnswer part;
            part.diagonal = answer_.diagonal;
            const std::string problem = Mesh(body.shape);
            if (!problem.empty()) { part.problems.push_back({body.entity, problem}); }
            part.bodies.push_back(Collected(body));
            listener_.Take(part);
        }
    }

    MeshBody Collected(const KernelBody& body) const {
        MeshBody out;
        out.entity = body.entity;
        for (TopExp_Explorer faces(body.shape, TopAbs_FACE); faces.More(); faces.Next()) {
            const TopoDS_Face& face = TopoDS::Face(faces.Current());
            MeshFace mesh;
            const std::string problem = Caught([&] { TakeFaceMesh(face, unit_, &mesh); });
            const auto number = body.numbers.find(face.TShape().get());
            mesh.entity = number != body.numbers.end() ? number->second : 0;
            if (problem.empty() && !mesh.triangles.empty()) {
                out.faces.push_back(std::move(mesh));
            } else {
                out.lostFaces.push_back(mesh.entity);
            }
        }
        return out;
    }

    const MeshRequest& request_;
    MeshListener& listener_;
    MeshAnswer answer_;
    STEPControl_Reader reader_;
    Handle(StepData_StepModel) model_;
    Handle(StepShape_ShapeRepresentation) representation_;
    std::unordered_map<std::uint64_t, Entity> byNumber_;
    Handle(Transfer_TransientProcess) process_; // of the body that was made last
    std::vector<KernelBody> bodies_;
    double unit_ = 1;     // of the context, in millimetres
    double diagonal_ = 0; // in millimetres
};

} // namespace

void StartKernel() {
    std::set_terminate([] {
        const std::type_info* const type = abi::__cxa_current_exception_type();
        const bool isMemory =
            type != nullptr && (*type == typeid(std::bad_alloc) || *type == typeid(Standard_OutOfMemory));
        if (isMemory) { std::_Exit(kMeshOutOfMemory); }
        std::abort();
    });
    Message::DefaultMessenger()->ChangePrinters().Clear();
    OSD::SetSignal(Standard_False);
}

MeshAnswer MeshByKernel(const MeshRequest& request, MeshListener* listener) {
    MeshAnswer answer;
    const std::string problem = Caught([&] { answer = KernelRun(request, listener).Run(); });
    if (!problem.empty()) { answer.problems.push_back({0, problem}); }
    return answer;
}

} // namespace tarnwick::tools
