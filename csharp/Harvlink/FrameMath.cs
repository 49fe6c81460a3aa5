using Harvlink.Native;

namespace Harvlink
{
    /// <summary>A vector. Lengths keep the unit of the inputs.</summary>
    public struct Vector
    {
        /// <summary>Makes a vector.</summary>
        public Vector(double x, double y, double z)
        {
            X = x;
            Y = y;
            Z = z;
        }

        /// <summary>Along the first axis.</summary>
        public double X { get; set; }

        /// <summary>Along the second axis.</summary>
        public double Y { get; set; }

        /// <summary>Along the third axis.</summary>
        public double Z { get; set; }

        /// <summary>The scalar product.</summary>
        public unsafe double Dot(Vector other)
        {
            XyzVector first = Record(), second = other.Record();
            double result;
            Functions.vector_math_inner_product(&first, &second, &result);
            return result;
        }

        /// <summary>The vector product.</summary>
        public unsafe Vector Cross(Vector other)
        {
            XyzVector first = Record(), second = other.Record(), result;
            Functions.vector_math_cross_product(&first, &second, &result);
            return new Vector(result.x, result.y, result.z);
        }

        internal XyzVector Record()
        {
            return new XyzVector { x = X, y = Y, z = Z };
        }
    }

    /// <summary>A position and the rotation Rz(rz) Ry(ry) Rx(rx), in degrees.</summary>
    public struct Pose
    {
        /// <summary>Makes a pose.</summary>
        public Pose(double x, double y, double z, double rx, double ry, double rz)
        {
            X = x;
            Y = y;
            Z = z;
            Rx = rx;
            Ry = ry;
            Rz = rz;
        }

        /// <summary>Along the first axis.</summary>
        public double X { get; set; }

        /// <summary>Along the second axis.</summary>
        public double Y { get; set; }

        /// <summary>Along the third axis.</summary>
        public double Z { get; set; }

        /// <summary>About the first axis, -180 to 180.</summary>
        public double Rx { get; set; }

        /// <summary>About the second axis, -90 to 90.</summary>
        public double Ry { get; set; }

        /// <summary>About the third axis, -180 to 180.</summary>
        public double Rz { get; set; }

        /// <summary>The same as a frame.</summary>
        public unsafe Frame ToFrame()
        {
            var pose = new ZyxEulerPose { x = X, y = Y, z = Z, rx = Rx, ry = Ry, rz = Rz };
            EulerMatrix result;
            Functions.frame_math_zyx_euler_to_frame(&pose, &result);
            return new Frame(result);
        }
    }

    /// <summary>A homogeneous frame: the columns n, o and a of the rotation, then the position p.</summary>
    public struct Frame
    {
        private readonly EulerMatrix record;

        internal Frame(EulerMatrix record)
        {
            this.record = record;
        }

        /// <summary>No rotation and no translation.</summary>
        public static unsafe Frame Identity
        {
            get
            {
                EulerMatrix result;
                Functions.frame_math_set_identity_matrix_in_frame(&result);
                return new Frame(result);
            }
        }

        /// <summary>The first axis of the rotation.</summary>
        public Vector N => new Vector(record.nx, record.ny, record.nz);

        /// <summary>The second axis of the rotation.</summary>
        public Vector O => new Vector(record.ox, record.oy, record.oz);

        /// <summary>The third axis of the rotation.</summary>
        public Vector A => new Vector(record.ax, record.ay, record.az);

        /// <summary>The position.</summary>
        public Vector P => new Vector(record.px, record.py, record.pz);

        /// <summary>The product of two frames.</summary>
        public static unsafe Frame operator *(Frame left, Frame right)
        {
            EulerMatrix first = left.record, second = right.record, result;
            Functions.frame_math_multiply_frames(&first, &second, &result);
            return new Frame(result);
        }

        /// <summary>The inverse of a rigid frame.</summary>
        public unsafe Frame Inverse()
        {
            EulerMatrix frame = record, result;
            Functions.frame_math_invert_frame(&frame, &result);
            return new Frame(result);
        }

        /// <summary>The frame turned by degrees, right-handed, about an axis of unit length through its own origin.</summary>
        public unsafe Frame Rotated(Vector axis, double degrees)
        {
            EulerMatrix frame = record, result;
            XyzVector about = axis.Record();
            Functions.frame_math_rotate_frame(&frame, &about, &result, degrees);
            return new Frame(result);
        }

        /// <summary>The position and the angles.</summary>
        public unsafe Pose ToPose()
        {
            EulerMatrix frame = record;
            ZyxEulerPose pose;
            Functions.frame_math_frame_to_zyx_euler(&frame, &pose);
            return new Pose(pose.x, pose.y, pose.z, pose.rx, pose.ry, pose.rz);
        }
    }
}
